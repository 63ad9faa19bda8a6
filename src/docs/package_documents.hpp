#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// The documents of a package.
enum doc_id_t : std::int32_t {
    doc_readme,
    doc_eula,
    doc_licence_flashtools,
    doc_licence_morv,
    doc_licence_firmware,
    doc_copyrights_centos,
    doc_copyrights_debian
};

/// A document, and what its file is called in the package.
struct document_t {
    doc_id_t id;
    std::string_view fileName;
    bool isOptional = false;  ///< a package may lack it, as no menu offers it
};

/// All documents, in the order of their entries in the menus.
inline constexpr std::array packageDocuments{
    document_t{doc_readme, "readme.txt"},
    document_t{doc_eula, "eula_en.txt"},
    document_t{doc_licence_flashtools, "ThirdPartyLicenseReadmeFlashtools.txt"},
    document_t{doc_licence_morv, "ThirdPartyLicenseReadme_MORV_API.txt"},
    document_t{doc_licence_firmware, "ThirdPartyLicenseReadmeFirmware.txt"},
    document_t{doc_copyrights_centos, "CopyrightsCentOS"},
    document_t{doc_copyrights_debian, "CopyrightsDebian", true},
};

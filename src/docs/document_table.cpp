#include "docs/document_table.hpp"

#include <array>

namespace {

constexpr std::array documents{
    document_t{doc_readme, "../readme.txt"},
    document_t{doc_eula, "../eula_en.txt"},
    document_t{doc_licence_flashtools, "../ThirdPartyLicenseReadmeFlashtools.txt"},
    document_t{doc_licence_morv, "../ThirdPartyLicenseReadme_MORV_API.txt"},
    document_t{doc_licence_firmware, "../ThirdPartyLicenseReadmeFirmware.txt"},
    document_t{doc_copyrights_centos, "../CopyrightsCentOS"},
    document_t{doc_copyrights_debian, "../CopyrightsDebian", true},
};

}  // namespace

std::span<const document_t> documentTable() { return documents; }

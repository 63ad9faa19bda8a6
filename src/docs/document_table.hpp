#pragma once

#include <cstdint>
#include <span>
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

/// Where a document lies.
struct document_t {
    doc_id_t id;
    const char* path;         ///< from the tool's folder
    bool isOptional = false;  ///< a package may lack it, as no menu offers it

    /// @return the path in the package
    std::string_view fileName() const { return std::string_view(path).substr(sizeof "../" - 1); }
};

/// @return all documents, in the order of their entries in the menus
std::span<const document_t> documentTable();

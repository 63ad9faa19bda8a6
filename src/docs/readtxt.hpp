#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "docs/package_documents.hpp"
#include "docs/read_prog_handler.hpp"
#include "support/support.hpp"

/// Which of the two document maps a menu item is looked up in.
enum text_kind_t : int { text_readme = 0, text_legal = 1 };

/// Shows the package's text documents, which lie in the directory above the working directory,
/// through the first reader program that the system has.
class readtxt : public virtual support {
public:
    /// @param evaluate true: documents are read through cat, unseen
    /// @param readme, legal pairs of (menu item, doc_id_t); the first pair of a menu item wins
    readtxt(bool evaluate, const std::vector<std::pair<int, int>>& readme,
            const std::vector<std::pair<int, int>>& legal);

    /// Shows the document that the menu item has in the map of this kind.
    /// @param kind one of text_kind_t
    /// @throws std::runtime_error for any other kind, or as showDocument
    void showText(int menuItem, int kind);

    /// @throws std::runtime_error when the menu item has no document, its file is missing, or no
    /// reader program can be found or run
    void showDocument(int menuItem, const std::unordered_map<std::int32_t, doc_id_t>& documents);

protected:
    bool evalMode;
    std::vector<reader_prog_t> readerList;
    std::unordered_map<std::int32_t, doc_id_t> readmeMap;
    std::unordered_map<std::int32_t, doc_id_t> legalMap;
};

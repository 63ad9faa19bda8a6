#include "docs/readtxt.hpp"

#include <algorithm>
#include <stdexcept>

namespace {

std::unordered_map<std::int32_t, doc_id_t> makeDocumentMap(
    const std::vector<std::pair<int, int>>& pairs) {
    std::unordered_map<std::int32_t, doc_id_t> map;
    for (const auto& [menuItem, document] : pairs) {
        map.emplace(menuItem, static_cast<doc_id_t>(document));
    }
    return map;
}

std::string pathOf(doc_id_t id) {
    const auto documents = documentTable();
    const auto document = std::find_if(documents.begin(), documents.end(),
                                       [id](const document_t& each) { return each.id == id; });
    if (document == documents.end()) {
        throw std::runtime_error("Text file is not defined");
    }
    return document->path;
}

}  // namespace

readtxt::readtxt(bool evaluate, const std::vector<std::pair<int, int>>& readme,
                 const std::vector<std::pair<int, int>>& legal)
    : evalMode(evaluate), readmeMap(makeDocumentMap(readme)), legalMap(makeDocumentMap(legal)) {
    if (evalMode) {
        readerList = {{"cat", "", false}};
    } else {
        readerList = {{"less", "LESSCHARSET=UTF-8", false}, {"more", "", true}, {"cat", "", true}};
    }
}

void readtxt::showText(int menuItem, int kind) {
    switch (kind) {
        case text_readme:
            return showDocument(menuItem, readmeMap);
        case text_legal:
            return showDocument(menuItem, legalMap);
        default:
            throw std::runtime_error("Read file type not supported");
    }
}

void readtxt::showDocument(int menuItem,
                           const std::unordered_map<std::int32_t, doc_id_t>& documents) {
    const auto document = documents.find(menuItem);
    if (document == documents.end()) {
        throw std::runtime_error("Text file not supported");
    }
    const std::string path = pathOf(document->second);
    if (!fileExists(path)) {
        throw std::runtime_error("Text file is not present " + path);
    }
    for (const reader_prog_t& reader : readerList) {
        if (programExists(reader.name)) {
            read_prog_handler(evalMode, reader).showFile(path);
            return;
        }
    }
    throw std::runtime_error("No programs available for txtfile reading");
}

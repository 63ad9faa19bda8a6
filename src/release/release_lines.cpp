#include "release/release_lines.hpp"

#include "support/support.hpp"

namespace {

/// The order in which a line is compared with the entries.
constexpr std::array matchOrder{release_image, release_system, release_sdr, release_firmware};

}  // namespace

release_store_t releaseStore() {
    release_store_t store;
    for (const release_key_t& entry : releaseKeys) {
        store.emplace(entry.id, entry.key);
    }
    return store;
}

bool release_lines::take(std::string_view line) {
    if (isEmpty) {
        return false;  // it matches whatever line comes next
    }
    for (const auto id : matchOrder) {
        std::string& text = store.at(id);
        if (line.starts_with(text)) {
            text = line.substr(text.size());
            support::removeQuotes(text);
            support::removeLineEnds(text);
            last = id;
            isEmpty = text.empty();
            // A line that matches an entry for the second time matches its value, not its key.
            return matched.insert(id).second;
        }
    }
    return true;
}

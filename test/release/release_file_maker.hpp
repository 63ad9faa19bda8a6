#pragma once

#include <algorithm>
#include <cctype>
#include <random>
#include <string>
#include <vector>

inline constexpr std::uint32_t releaseFileSeed = 20261121;

/// Makes release files up: most of them nearly proper, each with a few oddities.
class release_file_maker {
public:
    using texts_t = std::vector<std::string>;

    std::string file() {
        texts_t keys{"VARN_RELEASE=", "SDR_RELEASE=", "SYSTEM=", "IMAGE_NAME="};
        std::shuffle(keys.begin(), keys.end(), random);
        values.clear();
        std::string text;
        for (const std::string& key : keys) {
            text += oneIn(6) ? otherLine(key) + lineEnd() : "";
            text += oneIn(30) ? "" : key + value() + lineEnd();
        }
        text += oneIn(4) ? otherLine(pick(keys)) + lineEnd() : "";
        if (oneIn(3) && text.ends_with('\n')) {
            text.pop_back();
        }
        return text;
    }

    /// Puts a line, or an end to one, of a mebibyte somewhere into the file.
    std::string fileWithLongLine() {
        std::string text = file();
        const std::string longText(1U << 20, 'q');
        return text.insert(random() % (text.size() + 1), longText + (oneIn(2) ? "\n" : ""));
    }

private:
    bool oneIn(unsigned count) { return random() % count == 0; }
    const std::string& pick(const texts_t& texts) { return texts[random() % texts.size()]; }
    std::string lineEnd() { return oneIn(4) ? "\r\n" : "\n"; }

    std::string value() {
        static const texts_t nothing{"", "\"\"", "\r", "\"\r\""};
        // Some are how a key begins, so that later keys begin with the value.
        static const texts_t pieces{"2.41",  "SV",      "fw.bin", " ",  "\"", "\r",
                                    "\t",    "SYSTEM=", "S",      "SD", "V",  "VARN_",
                                    "IMAGE", "I",       "#",      "=",  "z",  std::string(1, '\0')};
        values.emplace_back();
        for (std::size_t count = random() % 4 + 1; count > 0; --count) {
            values.back() += pick(pieces);
        }
        if (oneIn(15)) {
            values.back() = pick(nothing);
        }
        return values.back();
    }

    /// A line that is about the key or about a value so far, but gives no value, or a second one.
    std::string otherLine(const std::string& key) {
        std::string repeated = values.empty() ? "none" : pick(values);
        std::erase_if(repeated, [](char c) { return c == '"' || c == '\r'; });
        std::string lower = key;
        std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
            return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        });
        return pick({"", "# a remark", " " + key + "blank", "\t" + key + "tab", lower + "lower",
                     key + "other", "\"" + key + "quote", repeated + "repeated", repeated,
                     key.substr(0, key.size() - 1), std::string(1, '\0') + key});
    }

    std::mt19937 random{releaseFileSeed};
    texts_t values;
};

#pragma once

#include <string>
#include <string_view>

/// What may be shown on a terminal. Every name and text that comes from outside goes through here.
/// @return text with a backslash doubled and each byte other than printable ASCII as "\ooo"
std::string printable(std::string_view text);

/// @return true when there is nothing but printable ASCII
bool isPrintable(std::string_view text);

/// What every tar, shell and terminal takes for the same name.
/// @return true for letters, digits and "._+-", neither a dot nor a dash first, 1 to 100 of them
bool isPlainName(std::string_view name);

// Texts with places to be filled in, "{{name}}", and the few things that HTML wants of a text.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace lumafold::manual {

/// What is wrong with the texts or the tables: one line.
struct Fault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::string ReadText(const std::string& path);

using Values = std::map<std::string, std::string, std::less<>>;
/// Throws a Fault where the text names what there is no value for.
std::string Fill(std::string_view text, const Values& values);

/// A text as HTML shows it.
std::string Escaped(std::string_view text);
/// What is shown for a caption of a dialog: no mnemonic, no colon.
std::string Caption(std::string_view label);
/// Letters, digits and nothing else: what every browser takes for an anchor.
std::string AnchorName(std::string_view text);
std::vector<std::string> Split(std::string_view text, char separator);

/// Lines of a file but for remarks, which begin with "#".
std::vector<std::string> ReadLines(const std::string& path);

} // namespace lumafold::manual

#include "tool/lut/correction_file.h"

#include "tool/lut/text_blanking.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace ze::tool {
namespace {

constexpr std::string_view kRoots[] = {"ColorCorrection", "ColorCorrectionCollection", "ColorDecisionList"};
constexpr char kSpaces[] = " \t\n";

constexpr std::pair<std::string_view, char> kEntities[] = {
    {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}, {"&amp;", '&'}};

void blankOutComments(std::string& xml) {
    for (size_t at = xml.find("<!--"); at != xml.npos; at = xml.find("<!--", at))
        blankOut(xml, at, std::min(xml.find("-->", at), xml.size() - 3) + 3);
}

// The name of the element whose tag begins at `tag`.
std::string_view nameAt(std::string_view xml, size_t tag) {
    const size_t end = std::min(xml.find_first_of(" \t\n/>", tag + 1), xml.size());
    return xml.substr(tag + 1, end - tag - 1);
}

// The first element, behind declarations.
std::string_view rootOf(std::string_view xml) {
    size_t tag = xml.find_first_not_of(kSpaces);
    if (tag == xml.npos || xml[tag] != '<')
        return {};
    while (tag + 1 < xml.size() && (xml[tag + 1] == '?' || xml[tag + 1] == '!'))
        tag = std::min(xml.find('<', tag + 1), xml.size());
    return tag < xml.size() ? nameAt(xml, tag) : std::string_view();
}

std::string decoded(std::string_view value) {
    std::string text(value);
    for (const auto& [entity, character] : kEntities)
        for (size_t at = text.find(entity); at != text.npos; at = text.find(entity, at + 1))
            text.replace(at, entity.size(), 1, character);
    return text;
}

// The attribute "id" of a start tag; empty when it has none.
std::string idIn(std::string_view tag) {
    for (size_t at = tag.find("id"); at != tag.npos; at = tag.find("id", at + 1)) {
        const size_t equals = std::min(tag.find_first_not_of(kSpaces, at + 2), tag.size() - 1);
        const size_t quote = std::min(tag.find_first_not_of(kSpaces, equals + 1), tag.size() - 1);
        if (std::string_view(kSpaces).find(tag[at - 1]) == tag.npos || tag[equals] != '=')
            continue;
        return decoded(tag.substr(quote + 1, tag.find(tag[quote], quote + 1) - quote - 1));
    }
    return "";
}

} // namespace

std::vector<Correction> correctionsIn(std::string text) {
    blankOutComments(text);
    std::vector<Correction> corrections;
    if (std::find(std::begin(kRoots), std::end(kRoots), rootOf(text)) == std::end(kRoots))
        return corrections;
    for (size_t at = text.find("<ColorCorrection"); at != text.npos;
         at = text.find("<ColorCorrection", at + 1)) {
        if (nameAt(text, at) != kRoots[0])
            continue;
        const size_t close = std::min(text.find("</ColorCorrection", at), text.size());
        const std::string id = idIn(std::string_view(text).substr(at, text.find('>', at) - at));
        corrections.push_back({id.empty() ? "#" + std::to_string(corrections.size() + 1) : id, at,
                               std::min(text.find('>', close), text.size() - 1) + 1});
    }
    return corrections;
}

std::vector<std::string> namesOf(const std::vector<Correction>& corrections) {
    std::vector<std::string> names;
    for (const Correction& correction : corrections)
        names.push_back(correction.name);
    return names;
}

Failure unknownCorrection(const std::string& file, const std::string& id,
                          const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "; it has '" : ", '") + name + "'";
    return {ExitCode::badInput, file, "has no color correction '" + id + "'" + list};
}

std::string onlyCorrection(std::string text, const Correction& correction) {
    blankOut(text, 0, correction.begin);
    blankOut(text, correction.end, text.size());
    return text;
}

} // namespace ze::tool

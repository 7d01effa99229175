#include "tests/dissector/dissection.h"

#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <sstream>

#include "tests/system/gateway.h"

constexpr const char CAPTURE_FILE[] = "/tmp/dissected.pcap";

std::ostream &operator<<(std::ostream &out, const dissected_field &field) {
    out << field.name << " = " << field.show << " [";
    static const char digits[] = "0123456789abcdef";
    for (char c : field.value)
        out << digits[static_cast<uint8_t>(c) >> 4] << digits[c & 15];
    return out << "]";
}

std::string dissected_frame::operator[](const std::string &name) const {
    for (const dissected_field &field : fields)
        if (field.name == name)
            return field.show;
    return "(absent)";
}

// Settings and plugins of whoever runs the tests are left out.
static command_output run_tshark(const capture &frames, const std::string &options) {
    write_capture(frames, CAPTURE_FILE);
    command_output output = run_command(std::string("WIRESHARK_CONFIG_DIR=/tmp/wireshark tshark -r ") + CAPTURE_FILE +
                                        " -X lua_script:" + WLAN_SOURCE_DIR "/docs/wlan_config.lua " + options);
    EXPECT_EQ(output.status, 0) << output.errors;
    size_t error = output.text.find("Lua Error");
    EXPECT_EQ(error, std::string::npos) << output.text.substr(std::min(error, output.text.size()), 200);
    EXPECT_EQ(output.errors.find("Lua"), std::string::npos) << output.errors;
    return output;
}

std::vector<std::string> tshark_lines(const capture &frames, const std::string &options) {
    std::istringstream text(run_tshark(frames, options).text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

static std::string without_entities(std::string text) {
    static const struct {
        const char *entity;
        const char *character;
    } entities[] = {{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#x27;", "'"}, {"&apos;", "'"}, {"&amp;", "&"}};
    for (auto [entity, character] : entities)
        for (size_t at = 0; (at = text.find(entity, at)) != std::string::npos; at++)
            text.replace(at, strlen(entity), character);
    return text;
}

static std::string attribute(const std::string &line, const std::string &name) {
    size_t begin = line.find(" " + name + "=\"");
    if (begin == std::string::npos)
        return "";
    begin += name.size() + 3;
    return without_entities(line.substr(begin, line.find('"', begin) - begin));
}

static bytes bytes_of_hex(const std::string &text) {
    bytes value;
    for (size_t i = 0; i + 1 < text.size(); i += 2)
        value += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
    return value;
}

constexpr const char PROBLEM_PREFIX[] = "wlan_config.expert.";

static void take_field(const std::string &line, dissected_frame *frame) {
    std::string name = attribute(line, "name");
    frame->labels.push_back(attribute(line, "showname"));
    if (name.starts_with(PROBLEM_PREFIX))
        frame->problems.insert(name.substr(strlen(PROBLEM_PREFIX)));
    else if (name.starts_with("wlan_config."))
        frame->fields.push_back({name, attribute(line, "show"), bytes_of_hex(attribute(line, "value"))});
}

// PDML has an element a line, but a text in one of its attributes may have lines of its own. Nothing but an element has
// a ">", so that each ends with the first one at the end of a line.
static std::vector<std::string> elements_of(const std::string &pdml) {
    std::vector<std::string> elements;
    for (size_t begin = 0, end; (end = pdml.find(">\n", begin)) != std::string::npos; begin = end + 2)
        elements.push_back(pdml.substr(begin, end + 1 - begin));
    return elements;
}

std::vector<dissected_frame> dissect(const capture &frames, const std::string &options) {
    std::vector<dissected_frame> dissected;
    bool inside = false;
    std::string pdml = run_tshark(frames, options + " -T pdml -J 'wlan_config icmp'").text;
    for (const std::string &line : elements_of(pdml)) {
        if (line.ends_with("<packet>"))
            dissected.push_back({});
        if (line.find("<proto name=\"wlan_config\"") != std::string::npos) {
            inside = true;
            dissected.back().title = attribute(line, "showname");
        } else if (line.find("</proto>") != std::string::npos) {
            inside = false;
        } else if (inside && line.find("<field ") != std::string::npos) {
            take_field(line, &dissected.back());
        }
    }
    EXPECT_EQ(dissected.size(), frames.size());
    dissected.resize(frames.size());
    return dissected;
}

// The only file of the client that is made with the C++ library: the parser is nlohmann-json, which hands over one
// value after the other. It checks texts for UTF-8.
#include "client/settings_document.h"

#include <stdio.h>

#define JSON_NOEXCEPTION 1
#include <nlohmann/json.hpp>

const bool can_read_documents = true;

using json = nlohmann::json;

// Takes the parser's values and makes the tree; each function returns whether to go on. The names are the parser's.
struct tree_maker {
    value *root = nullptr;
    value *open[DOCUMENT_DEPTH_MAX] = {};
    size_t depth = 0;
    std::string member;
    char *problem;
    const char *text;
    size_t length;

    const char *name() const {
        return open[depth - 1]->kind == value_kind::OBJECT ? member.c_str() : nullptr;
    }

    bool refuse(const char *why) {
        snprintf(problem, PROBLEM_SIZE, "%s", why);
        return false;
    }

    bool begin(value *made) {
        if (depth == DOCUMENT_DEPTH_MAX) {
            free_value(made);
            return refuse("the document is deeper than any document of settings");
        }
        if (depth == 0)
            root = made;
        else
            add_value(open[depth - 1], name(), made);
        open[depth++] = made;
        return true;
    }

    bool end() {
        depth--;
        return true;
    }

    bool is_inside() {
        return depth > 0 || refuse("the document is no object");
    }

    bool null() {
        return is_inside() && add_nothing(open[depth - 1], name());
    }

    bool boolean(bool truth) {
        return is_inside() && add_boolean(open[depth - 1], name(), truth);
    }

    bool number_integer(json::number_integer_t number) {
        return is_inside() && add_number(open[depth - 1], name(), number);
    }

    bool number_unsigned(json::number_unsigned_t number) {
        if (number > INT64_MAX)
            return refuse("a number in the document is larger than any setting");
        return number_integer(static_cast<json::number_integer_t>(number));
    }

    bool number_float(json::number_float_t, const std::string &) {
        return refuse("a number in the document has a fraction, an exponent, or too many digits: no setting has");
    }

    bool string(std::string &said) {
        return is_inside() && add_text(open[depth - 1], name(), said.data(), said.size());
    }

    bool binary(json::binary_t &) {
        return refuse("the document has bytes that are no JSON");
    }

    bool start_object(size_t) {
        return begin(new_object());
    }

    bool end_object() {
        return end();
    }

    bool start_array(size_t) {
        return begin(new_list());
    }

    bool end_array() {
        return end();
    }

    bool key(std::string &said) {
        if (said.find('\0') != std::string::npos)
            return refuse("a name in the document has a NUL");
        if (count_values(open[depth - 1]) == DOCUMENT_MEMBERS_MAX)
            return refuse("an object in the document has more members than any document of settings");
        member = said;
        if (!find_member(open[depth - 1], member.c_str()))
            return true;
        snprintf(problem, PROBLEM_SIZE, "\"%.64s\" stands twice in one object", member.c_str());
        return false;
    }

    bool parse_error(size_t position, const std::string &, const json::exception &) {
        size_t line = 1, column = 0;
        for (size_t i = 0; i < position && i < length; i++) {
            column++;
            if (i + 1 < position && text[i] == '\n') {
                line++;
                column = 0;
            }
        }
        snprintf(problem, PROBLEM_SIZE, "no JSON at line %zu, column %zu", line, column ? column : 1);
        return false;
    }
};

value *parse_document(const char *text, size_t length, char problem[PROBLEM_SIZE]) {
    tree_maker maker;
    maker.problem = problem;
    maker.text = text;
    maker.length = length;
    if (json::sax_parse(text, text + length, &maker) && maker.root)
        return maker.root;
    free_value(maker.root);
    return nullptr;
}

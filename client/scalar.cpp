#include "client/scalar.h"

void print_scalar(FILE *out, const value *shown, const scalar_words *words) {
    switch (shown->kind) {
        case value_kind::NOTHING:
            fputs(words->nothing, out);
            break;
        case value_kind::BOOLEAN:
            fputs(shown->truth ? words->yes : words->no, out);
            break;
        case value_kind::SIGNED:
            fprintf(out, "%lld", static_cast<long long>(shown->number));
            break;
        case value_kind::UNSIGNED:
            fprintf(out, "%llu", static_cast<unsigned long long>(shown->natural));
            break;
        case value_kind::TEXT:
        case value_kind::LIST:
        case value_kind::OBJECT:
            break;
    }
}

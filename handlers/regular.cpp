// The handlers that follow from their rows in server/procedures.def. For example
//
//   PROCEDURE(21, wlan_get_ssid, BARE(VAP(index)), STRING(ssid), vap, wlan_getSSID, "SSID of the VAP")
//
// becomes
//
//   bool_t wlan_get_ssid_1_svc(int index, wlan_config_result_data_t *result, svc_req *)
//   {
//       log_debug("[VLK-API] %s  WLAN RPC server : [index %d]\n", __func__, index);
//       char ssid[STORE_VALUE_SIZE] = "";
//       result->return_code = wlan_config_return_code_e(wlan_getSSID(index, ssid, sizeof ssid));
//       pack_string(result, ssid);
//       log_debug("[VLK-API] %s  WLAN RPC server : result->return_data.return_data_len = %d\n", __func__, ...);
//       return TRUE;
//   }
//
// Every output starts as zero, so that what a back end leaves untouched is sent as 0 or as empty text.
#include <type_traits>

#include "config/log.h"
#include "config/store.h"
#include "handlers/backends.h"
#include "handlers/families.h"
#include "handlers/handlers.h"

// The inputs. A handler without arguments writes one blank behind its name, the others two.
#define LOG_FORMAT(n, element) LOG_FORMAT_##element
#define LOG_VALUE(n, element) , NAME_##element
#define LOG_INPUTS(...) LOG_INPUTS_(__VA_OPT__(SOME, ) NONE, __VA_ARGS__)
#define LOG_INPUTS_(which, ...) LOG_INPUTS_##which(__VA_ARGS__)
#define LOG_INPUTS_NONE(...) log_debug("[VLK-API] %s WLAN RPC server :\n", __func__);
#define LOG_INPUTS_SOME(none, ...)                                                  \
    log_debug("[VLK-API] %s  WLAN RPC server : " MAP(LOG_FORMAT, __VA_ARGS__) "\n", \
              __func__ MAP(LOG_VALUE, __VA_ARGS__));

// What the back end takes for a result: variables, their addresses, their types.
#define DECLARE_INTEGER(n, element) OUTPUT_TYPE_##element NAME_##element = 0;
#define ADDRESS(n, element) , &NAME_##element
#define ADDRESS_TYPE(n, element) , OUTPUT_TYPE_##element *
#define OUTPUTS_CODE
#define OUTPUTS_ACTION
#define OUTPUTS_INTEGERS(...) MAP(DECLARE_INTEGER, __VA_ARGS__)
#define OUTPUTS_INTEGERS64(count, name) int64_t name[count] = {};
#define OUTPUTS_WORDS(type, name) type name = {};
#define OUTPUTS_STRING(name) char name[STORE_VALUE_SIZE] = "";
#define OUTPUTS_LONG_STRING(size, name) char name[size] = "";
#define OUTPUTS_IMAGE(type, name) type name = {};
#define OUTPUTS_COUNTED_IMAGE(type, name) \
    int count = 0;                        \
    type name = {};
#define ADDRESSES_CODE
#define ADDRESSES_ACTION
#define ADDRESSES_INTEGERS(...) MAP(ADDRESS, __VA_ARGS__)
#define ADDRESSES_INTEGERS64(count, name) , name
#define ADDRESSES_WORDS(type, name) , &name
#define ADDRESSES_STRING(name) , name, sizeof name
#define ADDRESSES_LONG_STRING(size, name) , name, sizeof name
#define ADDRESSES_IMAGE(type, name) , &name
#define ADDRESSES_COUNTED_IMAGE(type, name) , &count, &name
#define ADDRESS_TYPES_CODE
#define ADDRESS_TYPES_ACTION
#define ADDRESS_TYPES_INTEGERS(...) MAP(ADDRESS_TYPE, __VA_ARGS__)
#define ADDRESS_TYPES_INTEGERS64(count, name) , int64_t *
#define ADDRESS_TYPES_WORDS(type, name) , type *
#define ADDRESS_TYPES_STRING(name) , char *, size_t
#define ADDRESS_TYPES_LONG_STRING(size, name) , char *, size_t
#define ADDRESS_TYPES_IMAGE(type, name) , type *
#define ADDRESS_TYPES_COUNTED_IMAGE(type, name) , int *, type *

// Where the status goes.
#define STATUS_CODE *result
#define STATUS_ACTION result->return_code
#define STATUS_INTEGERS(...) result->return_code
#define STATUS_INTEGERS64(...) result->return_code
#define STATUS_WORDS(...) result->return_code
#define STATUS_STRING(...) result->return_code
#define STATUS_LONG_STRING(...) result->return_code
#define STATUS_IMAGE(...) result->return_code
#define STATUS_COUNTED_IMAGE(...) result->return_code

// The outputs become the payload and a debug line.
#define INTEGER_WORD(n, element) static_cast<u_int>(NAME_##element),
#define LOG_DATA_LENGTH                                                                               \
    log_debug("[VLK-API] %s  WLAN RPC server : result->return_data.return_data_len = %d\n", __func__, \
              static_cast<int>(result->return_data.return_data_len));
#define PACK_CODE log_debug("[VLK-API] %s  WLAN RPC server : return code :%d\n", __func__, *result);
#define PACK_ACTION       \
    pack_nothing(result); \
    log_debug("[VLK-API] %s  WLAN RPC server : return code :%d\n", __func__, result->return_code);
#define PACK_INTEGERS(...)                                                          \
    const u_int words[] = {MAP(INTEGER_WORD, __VA_ARGS__)};                         \
    pack_integers(result, words, sizeof words / sizeof *words);                     \
    log_debug("[VLK-API] %s  WLAN RPC server : " MAP(LOG_FORMAT, __VA_ARGS__) "\n", \
              __func__ MAP(LOG_VALUE, __VA_ARGS__));
#define PACK_INTEGERS64(count, name)      \
    pack_integers64(result, name, count); \
    log_debug("[VLK-API] %s  WLAN RPC server : [" #name " %lld]\n", __func__, static_cast<long long>(name[0]));
#define PACK_WORDS(type, name)                                 \
    pack_integers(result, &name, sizeof name / sizeof(u_int)); \
    log_debug("[VLK-API] %s  WLAN RPC server : return code :%d\n", __func__, result->return_code);
#define PACK_STRING(name)      \
    pack_string(result, name); \
    LOG_DATA_LENGTH
#define PACK_LONG_STRING(size, name) PACK_STRING(name)
#define PACK_IMAGE(type, name)              \
    pack_image(result, &name, sizeof name); \
    LOG_DATA_LENGTH
#define PACK_COUNTED_IMAGE(type, name)                                            \
    pack_counted_image(result, count, &name, sizeof name);                        \
    log_debug("[VLK-API] %s  WLAN RPC server : [len %d]\n", __func__,             \
              static_cast<int>(result->return_values.return_values_len));         \
    log_debug("[VLK-API] %s  WLAN RPC server : [return_data_len %d]\n", __func__, \
              static_cast<int>(result->return_data.return_data_len));             \
    log_debug("[VLK-API] %s  WLAN RPC server : [total index %d]\n", __func__, count);

#define PARAMETER(n, element) PARAMETER_##element
#define PASSED(n, element) PASSED_##element
#define PASSED_TYPE(n, element) PASSED_TYPE_##element
#define BACK_END_TYPE(arguments, result_kind) \
    int(WITHOUT_COMMA(MAP(PASSED_TYPE, ELEMENTS_##arguments) ADDRESS_TYPES_##result_kind))
#define TEXT_OF(...) TEXT_OF_(__VA_ARGS__)
#define TEXT_OF_(...) #__VA_ARGS__

#define BY_HAND(...)
#define PROCEDURE(number, procedure, arguments, result_kind, room, back_end, summary)                                  \
    static_assert(std::is_same_v<decltype(back_end), BACK_END_TYPE(arguments, result_kind)>, #procedure                \
                  ": its row wants the back end " #back_end " to be " TEXT_OF(BACK_END_TYPE(arguments, result_kind))); \
    bool_t procedure##_1_svc(MAP(PARAMETER, ELEMENTS_##arguments) RESULT_TYPE_##result_kind *result, svc_req *) {      \
        LOG_INPUTS(ELEMENTS_##arguments)                                                                               \
        OUTPUTS_##result_kind STATUS_##result_kind = static_cast<wlan_config_return_code_e>(                           \
            back_end(WITHOUT_COMMA(MAP(PASSED, ELEMENTS_##arguments) ADDRESSES_##result_kind)));                       \
        PACK_##result_kind return TRUE;                                                                                \
    }
#include "server/procedures.def"

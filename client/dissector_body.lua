-- Fields: what can be filtered, shown as a column and exported.

local proto = Proto("wlan_config", "Wi-Fi configuration")
proto.prefs.byte_order = Pref.enum("Byte order of records", 1,
    "The byte order of the gateway, in which it sends records (numbers outside records are always big endian)",
    { { 1, "little", 1 }, { 2, "big", 2 } }, true)

local SUCCESS = 0
local CALL, REPLY = 0, 1
local ACCEPTED, DENIED = 0, 1
local RPC_VERSION = 2
local SECOND_BLOCK = 0x1000000 -- where the second block of procedure numbers begins
local OPAQUE_AUTH_MAX = 400 -- bytes of credentials, and of a verifier, that RPC allows

local MESSAGE_TYPES = { [CALL] = "Call", [REPLY] = "Reply" }
local REPLY_STATES = { [ACCEPTED] = "accepted", [DENIED] = "denied" }
local ACCEPT_STATES = {
    [0] = "SUCCESS", [1] = "PROG_UNAVAIL", [2] = "PROG_MISMATCH", [3] = "PROC_UNAVAIL", [4] = "GARBAGE_ARGS",
    [5] = "SYSTEM_ERR"
}
local ACCEPT_TEXTS = {
    [1] = "the server does not have this program", [2] = "the server has other versions of this program",
    [3] = "the server does not have this procedure", [4] = "the server cannot decode the arguments",
    [5] = "the server met a system error"
}
local REJECT_STATES = { [0] = "RPC_MISMATCH", [1] = "AUTH_ERROR" }
local AUTH_STATES = {
    [1] = "AUTH_BADCRED", [2] = "AUTH_REJECTEDCRED", [3] = "AUTH_BADVERF", [4] = "AUTH_REJECTEDVERF",
    [5] = "AUTH_TOOWEAK"
}
local FLAVOURS = { [0] = "AUTH_NONE", [1] = "AUTH_SYS", [2] = "AUTH_SHORT", [3] = "AUTH_DH", [6] = "RPCSEC_GSS" }

local procedure_names = { [0] = "NULL" }
for number, row in pairs(PROCEDURES) do
    procedure_names[number] = row.procedure
end

local fields = {
    xid = ProtoField.uint32("wlan_config.xid", "XID", base.HEX),
    message_type = ProtoField.uint32("wlan_config.type", "Message type", base.DEC, MESSAGE_TYPES),
    rpc_version = ProtoField.uint32("wlan_config.rpc_version", "RPC version"),
    program = ProtoField.uint32("wlan_config.program", "Program", base.HEX),
    version = ProtoField.uint32("wlan_config.version", "Program version"),
    procedure = ProtoField.uint32("wlan_config.procedure", "Procedure", base.DEC, procedure_names),
    procedure_name = ProtoField.string("wlan_config.procedure_name", "Procedure name"),
    operation = ProtoField.string("wlan_config.operation", "Operation"),
    flavour = ProtoField.uint32("wlan_config.auth.flavor", "Flavor", base.DEC, FLAVOURS),
    auth_length = ProtoField.uint32("wlan_config.auth.length", "Length"),
    auth_body = ProtoField.bytes("wlan_config.auth.body", "Body"),
    reply_state = ProtoField.uint32("wlan_config.reply_status", "Reply status", base.DEC, REPLY_STATES),
    accept_state = ProtoField.uint32("wlan_config.accept_status", "Accept status", base.DEC, ACCEPT_STATES),
    reject_state = ProtoField.uint32("wlan_config.reject_status", "Reject status", base.DEC, REJECT_STATES),
    auth_state = ProtoField.uint32("wlan_config.auth_status", "Authentication status", base.DEC, AUTH_STATES),
    low = ProtoField.uint32("wlan_config.version_low", "Lowest version"),
    high = ProtoField.uint32("wlan_config.version_high", "Highest version"),
    return_code = ProtoField.int32("wlan_config.return_code", "Return code"),
    values_count = ProtoField.uint32("wlan_config.return_values.count", "Elements of return_values"),
    values_rest = ProtoField.bytes("wlan_config.return_values.rest", "Elements without a meaning"),
    value = ProtoField.uint32("wlan_config.return_values.value", "Element"),
    data_length = ProtoField.uint32("wlan_config.return_data.length", "Bytes of return_data"),
    data = ProtoField.bytes("wlan_config.return_data.bytes", "return_data"),
    length = ProtoField.uint32("wlan_config.text_length", "Length"),
    undecoded = ProtoField.bytes("wlan_config.undecoded", "Not decoded"),
    call_in = ProtoField.framenum("wlan_config.call_in", "Call in", base.NONE, frametype.REQUEST),
    reply_in = ProtoField.framenum("wlan_config.reply_in", "Reply in", base.NONE, frametype.RESPONSE),
    time = ProtoField.relative_time("wlan_config.time", "Time since the call")
}

local function problem(name, text, group, severity)
    return ProtoExpert.new("wlan_config.expert." .. name, text, group, severity)
end
local experts = {
    failure = problem("failure", "The server answered failure", expert.group.RESPONSE_CODE, expert.severity.NOTE),
    rpc_error = problem("rpc_error", "The call was refused", expert.group.RESPONSE_CODE, expert.severity.WARN),
    no_call = problem("no_call", "The call of this reply is not in the capture", expert.group.SEQUENCE,
        expert.severity.NOTE),
    no_reply = problem("no_reply", "The capture has no reply to this call", expert.group.SEQUENCE,
        expert.severity.WARN),
    repeated = problem("repeated", "Repeated call", expert.group.SEQUENCE, expert.severity.WARN),
    answered_again = problem("answered_again", "Another reply to one call", expert.group.SEQUENCE,
        expert.severity.NOTE),
    unreachable = problem("unreachable", "The datagram did not reach its receiver", expert.group.SEQUENCE,
        expert.severity.WARN),
    unassigned = problem("unassigned", "The server offers nothing under this number", expert.group.REQUEST_CODE,
        expert.severity.WARN),
    surplus = problem("surplus", "Bytes behind the end of the message", expert.group.PROTOCOL, expert.severity.NOTE),
    nul = problem("nul", "A NUL inside a text", expert.group.PROTOCOL, expert.severity.WARN),
    cut = problem("cut", "The capture has only the beginning of this datagram", expert.group.UNDECODED,
        expert.severity.NOTE),
    malformed = problem("malformed", "The datagram ends before its content does", expert.group.MALFORMED,
        expert.severity.ERROR),
    damaged = problem("damaged", "The result is none of this procedure", expert.group.MALFORMED, expert.severity.ERROR)
}

-- One field a name: wlan_config.arg.index serves every procedure that has an argument index. Numbers are 64 bits wide
-- there, so that signed and unsigned ones share a field. Where one procedure's text is called as another's number, the
-- text's field ends in _text.
local function is_text(kind)
    return kind == "TEXT"
end
local value_fields = {}
local function declare(prefix, used)
    for name, kinds in pairs(used) do
        local abbreviation = "wlan_config." .. prefix .. "." .. name
        if kinds.number then
            value_fields[prefix .. "." .. name .. ".number"] = ProtoField.int64(abbreviation, name)
        end
        if kinds.text then
            local text = kinds.number and abbreviation .. "_text" or abbreviation
            value_fields[prefix .. "." .. name .. ".text"] = ProtoField.string(text, name)
        end
    end
end
local function field_of(prefix, name, kind)
    return value_fields[prefix .. "." .. name .. (is_text(kind) and ".text" or ".number")]
end

local used_arguments, used_outputs = {}, {}
local function use(used, kind, name)
    used[name] = used[name] or {}
    used[name][is_text(kind) and "text" or "number"] = true
end
for _, row in pairs(PROCEDURES) do
    for _, argument in ipairs(row.arguments) do
        use(used_arguments, argument[1], argument[2])
    end
    for _, output in ipairs(row.result.outputs or {}) do
        use(used_outputs, output[1], output[2])
    end
    if row.result.kind == "TEXT" or row.result.kind == "INTEGERS64" then
        use(used_outputs, row.result.kind, row.result.name)
    end
end
declare("arg", used_arguments)
declare("result", used_outputs)

local NUMBER_FIELDS = {
    [1] = { [true] = ProtoField.int8, [false] = ProtoField.uint8 },
    [2] = { [true] = ProtoField.int16, [false] = ProtoField.uint16 },
    [4] = { [true] = ProtoField.int32, [false] = ProtoField.uint32 },
    [8] = { [true] = ProtoField.int64, [false] = ProtoField.uint64 }
}
local function record_field(abbreviation, field)
    if field.kind == "NUMBER" then
        return NUMBER_FIELDS[field.element_size][field.signed](abbreviation, field.name)
    elseif field.kind == "TEXT" then
        return ProtoField.string(abbreviation, field.name)
    elseif field.kind == "MAC" then
        return ProtoField.ether(abbreviation, field.name)
    end
    return ProtoField.bytes(abbreviation, field.name)
end
for name, record in pairs(RECORDS) do
    record.proto_field = ProtoField.none("wlan_config." .. name, name)
    value_fields[name] = record.proto_field
    for _, field in ipairs(record.fields) do
        if field.kind ~= "PADDING" and field.kind ~= "LIST" then
            field.proto_field = record_field("wlan_config." .. name .. "." .. field.name, field)
            value_fields[name .. "." .. field.name] = field.proto_field
        end
    end
end

local all_fields = {}
for _, group in ipairs({ fields, value_fields }) do
    for _, field in pairs(group) do
        all_fields[#all_fields + 1] = field
    end
end
proto.fields = all_fields
local all_experts = {}
for _, entry in pairs(experts) do
    all_experts[#all_experts + 1] = entry
end
proto.experts = all_experts

local icmp_type = Field.new("icmp.type")

-- Reading: a reader never goes beyond what was captured. Once something is missing it delivers nothing any more.

local function new_reader(tvb)
    return { tvb = tvb, at = 0, stop = tvb:len(), cut = tvb:len() < tvb:reported_len() }
end

local function left(reader)
    return reader.stop - reader.at
end

-- The next `count` bytes, at least one; nil when they are not there.
local function take(reader, count)
    if reader.failed or count > left(reader) then
        reader.failed = true
        return nil
    end
    local range = reader.tvb(reader.at, count)
    reader.at = reader.at + count
    return range
end

local function take_padding(reader, length)
    local padding = -length % 4
    return padding == 0 or take(reader, padding) ~= nil
end

-- The next number as a field of the tree: value and item, or nil.
local function take_number(reader, tree, field)
    local range = take(reader, 4)
    if not range then
        return nil
    end
    return range:uint(), tree:add(field, range)
end

local function say_what_is_missing(reader, tree)
    if reader.why then
        tree:add_proto_expert_info(experts.malformed, reader.why)
    elseif reader.failed then
        tree:add_proto_expert_info(reader.cut and experts.cut or experts.malformed)
    end
end

-- Ends the reading for another reason than the end of the bytes.
local function give_up(reader, why)
    reader.failed, reader.why = true, reader.why or why
end

-- Whatever is left, as bytes.
local function add_rest(reader, tree)
    if left(reader) == 0 then
        return nil
    end
    return tree:add(fields.undecoded, take(reader, left(reader)))
end

local function say_surplus(reader, tree, what)
    if reader.failed then
        return
    end
    local item = add_rest(reader, tree)
    if item then
        item:add_proto_expert_info(experts.surplus, "Bytes behind the end of the " .. what)
    end
end

-- What a character of UTF-8 looks like, by its first byte.
local CHARACTERS = {
    "^[\1-\127]+", "^[\194-\223][\128-\191]", "^\224[\160-\191][\128-\191]",
    "^[\225-\236\238\239][\128-\191][\128-\191]", "^\237[\128-\159][\128-\191]",
    "^\240[\144-\191][\128-\191][\128-\191]", "^[\241-\243][\128-\191][\128-\191][\128-\191]",
    "^\244[\128-\143][\128-\191][\128-\191]"
}
local REPLACEMENT = "\239\191\189"

local function character_at(text, at)
    for _, pattern in ipairs(CHARACTERS) do
        local character = text:match(pattern, at)
        if character then
            return character
        end
    end
end

-- A text up to its first NUL, with a replacement for each byte that is no UTF-8. (TvbRange:string does that as well,
-- but cuts what it returns to the number of bytes that were there before.)
local function text_of(range)
    local text = range:raw():match("^[^%z]*")
    local parts, at = {}, 1
    while at <= #text do
        local character = character_at(text, at)
        parts[#parts + 1] = character or REPLACEMENT
        at = at + (character and #character or 1)
    end
    return table.concat(parts)
end

local SUMMARY_TEXT_MAX = 60 -- bytes of a text in the info column

local function quoted(text)
    if #text > SUMMARY_TEXT_MAX then
        text = text:sub(1, SUMMARY_TEXT_MAX):gsub("[\192-\255][\128-\191]*$", "") .. "..."
    end
    return '"' .. text:gsub("%c", function(c) return ("\\x%02x"):format(c:byte()) end) .. '"'
end

-- A 32-bit number as a value of one of the shared fields.
local function add_value(tree, field, range, signed)
    local value = signed and range:int() or range:uint()
    return value, tree:add(field, range, Int64(value))
end

local UNSIGNED = { UINT = true, USHORT = true }

local function say_more(item, kind, value)
    if kind == "BOOL" then
        item:append_text(value == 0 and " (false)" or " (true)")
    elseif kind == "VAP" and value >= 1 and value <= VAPS then
        item:append_text(" (ath" .. value - 1 .. ")")
    elseif kind == "IGNORED" then
        item:append_text(" (not used by the server)")
    end
end

-- Calls.

local function add_text_argument(reader, tree, name, words)
    local before = reader.at
    local length_range = take(reader, 4)
    local length = length_range and length_range:uint()
    if not length then
        return
    end
    if length > left(reader) then -- before anything is made of it: it may claim 4 GiB
        tree:add(fields.length, length_range):prepend_text(name .. ": ")
        reader.failed = true
        return
    end
    local text, range = "", length_range
    if length > 0 then
        range = take(reader, length)
        text = text_of(range)
    end
    local complete = take_padding(reader, length)
    local item = tree:add(field_of("arg", name, "TEXT"), reader.tvb(before, reader.at - before), text)
    if range:raw():find("\0", 1, true) and length > 0 then
        item:add_proto_expert_info(experts.nul, "A NUL inside a text: the server takes what stands before it")
    end
    if complete then
        words[#words + 1] = name .. "=" .. quoted(text)
    end
end

local function add_argument(reader, tree, argument, words)
    local kind, name = argument[1], argument[2]
    if is_text(kind) then
        add_text_argument(reader, tree, name, words)
        return
    end
    local range = take(reader, 4)
    if range then
        local value, item = add_value(tree, field_of("arg", name, kind), range, not UNSIGNED[kind])
        say_more(item, kind, value)
        words[#words + 1] = name .. "=" .. value
    end
end

local function add_auth(reader, tree, title)
    local subtree = tree:add(title)
    take_number(reader, subtree, fields.flavour)
    local length = take_number(reader, subtree, fields.auth_length)
    if not length or length == 0 then
        return
    end
    if length > OPAQUE_AUTH_MAX then
        give_up(reader, ("%s of %u bytes: RPC allows %u"):format(title, length, OPAQUE_AUTH_MAX))
        return
    end
    local body = take(reader, length)
    if body then
        subtree:add(fields.auth_body, body)
        take_padding(reader, length)
    end
end

-- Numbers of the second block are written in hexadecimal, as everywhere.
local function number_text(number)
    return (number < SECOND_BLOCK and "%u" or "0x%X"):format(number)
end

-- What a call is, as far as its header goes: program, version, number and their row, if there is one.
local function name_call(tree, call)
    if call.program ~= PROGRAM then
        return ("program 0x%x procedure %s"):format(call.program, number_text(call.number))
    elseif call.version ~= VERSION then
        return ("version %u procedure %s"):format(call.version, number_text(call.number))
    elseif call.row then
        tree:add(fields.procedure_name, call.row.procedure):set_generated()
        local item = tree:add(fields.operation, call.row.operation):set_generated()
        item:append_text(" (" .. call.row.summary .. ")")
        return call.row.operation
    elseif call.number == 0 then
        tree:add(fields.procedure_name, "NULL"):set_generated()
        return "NULL"
    end
    return "procedure " .. number_text(call.number)
end

local function say_unassigned(tree, call)
    local text
    if call.program ~= PROGRAM then
        text = ("Program 0x%x is not the Wi-Fi configuration server"):format(call.program)
    elseif call.version ~= VERSION then
        text = ("The server has version %u only"):format(VERSION)
    elseif not call.row and call.number ~= 0 then
        text = "There is no procedure " .. number_text(call.number)
    end
    if text then
        tree:add_proto_expert_info(experts.unassigned, text)
    end
    return text ~= nil
end

-- The header up to the number, which is what makes a call ours.
local function read_call_header(reader, tree)
    local call = {}
    take_number(reader, tree, fields.rpc_version)
    call.program = take_number(reader, tree, fields.program)
    call.version = take_number(reader, tree, fields.version)
    call.number = take_number(reader, tree, fields.procedure)
    if call.number and call.program == PROGRAM and call.version == VERSION then
        call.row = PROCEDURES[call.number]
    end
    return call
end

local function dissect_call(reader, tree, call)
    local words = { "Call" }
    if not call.number then
        return words
    end
    words[2] = name_call(tree, call)
    add_auth(reader, tree, "Credentials")
    add_auth(reader, tree, "Verifier")
    if say_unassigned(tree, call) then
        add_rest(reader, tree)
        return words
    end
    if call.row then
        local subtree = #call.row.arguments > 0 and tree:add("Arguments")
        for _, argument in ipairs(call.row.arguments) do
            add_argument(reader, subtree, argument, words)
        end
    end
    say_surplus(reader, tree, "arguments")
    return words
end

-- Results.

local function little_endian()
    return proto.prefs.byte_order == 1
end

local function number_in(range)
    if range:len() == 1 then
        return range:uint()
    end
    return little_endian() and range:le_int() or range:int()
end

local function all_zero(range)
    return not range:raw():find("[^%z]")
end

local function with_unit(item, unit)
    if unit ~= "" then
        item:append_text(" " .. unit)
    end
end

-- One element of a field; a label replaces the name in front of the value of an element of an array.
local function add_element(tree, field, range, index)
    local item
    if field.kind == "TEXT" then
        item = tree:add(field.proto_field, range, text_of(range))
    elseif field.kind == "NUMBER" then
        item = tree:add_packet_field(field.proto_field, range, little_endian() and ENC_LITTLE_ENDIAN or ENC_BIG_ENDIAN)
    else
        item = tree:add(field.proto_field, range)
    end
    if field.elements > 1 then
        item:prepend_text("[" .. index .. "] ")
    end
    with_unit(item, field.unit)
end

local add_record

local function add_list(tree, field, range, count)
    if count > field.elements then
        tree:add_proto_expert_info(experts.damaged,
            ("%s has room for %u entries, not %d"):format(field.name, field.elements, count))
    end
    for index = 0, count - 1 do
        local at = index * field.element_size
        if at + field.element_size > range:len() then -- where the room ends, or what was captured of it
            return
        end
        add_record(tree, RECORDS[field.record], range(at, field.element_size),
            ("%s[%u]"):format(field.name, index))
    end
    if count < field.elements then
        tree:add(("%s: %u of %u entries"):format(field.name, math.max(count, 0), field.elements)):set_generated()
    end
end

-- Rows of octets are shown as long as they are not empty; of one row there is always one.
local function add_elements(tree, field, range)
    local empty = 0
    for index = 0, field.elements - 1 do
        local at = index * field.element_size
        if at + field.element_size > range:len() then
            return
        end
        local element = range(at, field.element_size)
        if field.kind == "OCTETS" and field.elements > 1 and all_zero(element) then
            empty = empty + 1
        else
            add_element(tree, field, element, index)
        end
    end
    if empty > 0 then
        tree:add(("%s: %u of %u entries"):format(field.name, field.elements - empty, field.elements)):set_generated()
    end
end

-- What of a field lies inside a range that may have been cut short; nil when nothing does.
local function part_of(range, offset, size)
    local length = math.min(size, range:len() - offset)
    return length > 0 and range(offset, length) or nil
end

-- How many entries of a list mean something: what the record says itself; nil when that was not captured.
local function count_of(record, list, range)
    for _, field in ipairs(record.fields) do
        if field.name == list.count then
            local part = part_of(range, field.offset, field.size)
            return part and part:len() == field.size and number_in(part) or nil
        end
    end
end

-- A record's memory image, or as much of it as the capture has. `label` stands before what names the record.
add_record = function(tree, record, range, label)
    local subtree = tree:add(record.proto_field, range)
    subtree:set_text(label .. " (" .. record.name .. ")")
    local named = false
    for _, field in ipairs(record.fields) do
        local part = part_of(range, field.offset, field.size)
        if not part then
            return
        end
        if field.kind == "LIST" then
            add_list(subtree, field, part, count_of(record, field, range) or 0)
        elseif field.kind ~= "PADDING" then
            add_elements(subtree, field, part)
            if not named and part:len() == field.size and (field.kind == "TEXT" or field.kind == "MAC") then
                named = true
                subtree:append_text(": " .. (field.kind == "MAC" and tostring(part:ether()) or quoted(text_of(part))))
            end
        end
    end
end

local function add_integers(tree, row, values, words)
    for i, output in ipairs(row.result.outputs) do
        if values[i] then
            local kind, name = output[1], output[2]
            local value, item = add_value(tree, field_of("result", name, kind), values[i], not UNSIGNED[kind])
            say_more(item, kind, value)
            words[#words + 1] = name .. "=" .. value
        end
    end
    return #row.result.outputs
end

local function add_integers64(tree, row, values, words)
    local field = field_of("result", row.result.name, "INTEGERS64")
    for i = 1, row.result.count do
        local low, high = values[2 * i - 1], values[2 * i]
        if low and high then
            local value = Int64(low:uint(), high:uint())
            local item = tree:add(field, low, value)
            item:set_len(8)
            if row.result.count > 1 then
                item:prepend_text("[" .. i - 1 .. "] ")
            else
                words[#words + 1] = row.result.name .. "=" .. tostring(value)
            end
        end
    end
    return 2 * row.result.count
end

-- The words of a record of numbers, each of which travels as an ordinary integer.
local function add_words(tree, row, values)
    local record, used = RECORDS[row.result.record], 0
    local subtree = tree:add(row.result.name .. " (" .. record.name .. ")")
    for _, field in ipairs(record.fields) do
        for index = 0, field.elements - 1 do
            used = used + 1
            if values[used] then
                local item = subtree:add(field.proto_field, values[used])
                if field.elements > 1 then
                    item:prepend_text("[" .. index .. "] ")
                end
                with_unit(item, field.unit)
            end
        end
    end
    return used
end

local function add_values_rest(tree, values, used, whole)
    if #values <= used then
        return
    end
    local first, last = values[used + 1], values[#values]
    local range = whole(first:offset(), last:offset() + 4 - first:offset())
    local item = tree:add(fields.values_rest, range)
    item:set_text(("Elements without a meaning: %u"):format(#values - used))
    if not all_zero(range) then
        item:append_text(", not all 0")
    end
end

-- The integers as ranges, as many as there are. The server sends four elements an integer: the integers in front and
-- nothing behind them.
local function read_values(reader, tree)
    local values = {}
    local count = take_number(reader, tree, fields.values_count)
    while count and #values < count do
        local range = take(reader, 4)
        if not range then
            break
        end
        values[#values + 1] = range
    end
    return values
end

local function add_values(tree, row, values, words, whole)
    local used = 0
    if row and row.result.kind == "INTEGERS64" then
        used = add_integers64(tree, row, values, words)
    elseif row and row.result.kind == "WORDS" then
        used = #values > 0 and add_words(tree, row, values) or 0
    elseif row and row.result.outputs then
        used = add_integers(tree, row, values, words)
    elseif not row then
        for _, value in ipairs(values) do
            tree:add(fields.value, value)
        end
        return
    end
    add_values_rest(tree, values, used, whole)
end

local function add_text(tree, name, range, whole, words)
    local text = range and text_of(range) or ""
    local item = tree:add(field_of("result", name, "TEXT"), range or whole, text)
    if range and not range:raw():find("\0", 1, true) then
        item:add_proto_expert_info(experts.damaged, "A text without an end")
    end
    words[#words + 1] = name .. "=" .. quoted(text)
end

local function add_image(tree, row, range, length, words)
    local record = RECORDS[row.result.record]
    if length ~= record.size then
        local item = tree:add(fields.data, range)
        item:add_proto_expert_info(experts.damaged,
            ("%u bytes of %s instead of %u"):format(length, record.name, record.size))
        return
    end
    add_record(tree, record, range, row.result.name)
    for _, field in ipairs(record.fields) do
        if field.kind == "LIST" then
            local count = count_of(record, field, range)
            words[#words + 1] = field.name .. "=" .. (count or "?")
        end
    end
end

-- return_data, or as much of it as there is.
local function add_data(reader, tree, row, words)
    local length, item = take_number(reader, tree, fields.data_length)
    if not length or length == 0 then
        return length
    end
    local available = math.min(length, left(reader))
    local range = available > 0 and take(reader, available) or nil
    if available < length then
        reader.failed = true
    else
        take_padding(reader, length)
    end
    if not range then
        return length
    end
    if row and row.result.kind == "TEXT" and available == length then
        add_text(tree, row.result.name, range, item, words)
    elseif row and row.result.kind == "IMAGE" then
        add_image(tree, row, range, length, words)
    else
        tree:add(fields.data, range)
    end
    return length
end

-- How many integers, and whether data, a result of this row has.
local function promised(row)
    local result = row.result
    if result.kind == "INTEGERS64" then
        return 2 * result.count, false
    elseif result.kind == "WORDS" then
        return RECORDS[result.record].size / 4, false
    end
    return #(result.outputs or {}), result.kind == "TEXT" or result.kind == "IMAGE"
end

local function check_payload(tree, row, code, values, length)
    local integers, data = promised(row)
    if code ~= SUCCESS and #values == 0 and length == 0 then
        return
    end
    if #values < integers or (data and length == 0) then
        tree:add_proto_expert_info(experts.damaged, "The result has less than this procedure answers")
    end
end

local function add_return_code(reader, tree, words)
    local range = take(reader, 4)
    if not range then
        return nil
    end
    local code = range:int()
    local item = tree:add(fields.return_code, range)
    if code == SUCCESS then
        item:append_text(" (success)")
    else
        item:append_text(" (failure)")
        item:add_proto_expert_info(experts.failure, ("The server answered failure (%d)"):format(code))
        words[#words + 1] = ("failure (%d)"):format(code)
    end
    return code
end

-- A result whose row is known, or, when the call is missing, as much as its shape tells.
local function dissect_result(reader, tree, row, words)
    if left(reader) == 0 and not row then
        return
    end
    local subtree = tree:add("Result")
    local code = add_return_code(reader, subtree, words)
    local bare
    if row then
        bare = row.result.kind == "CODE"
    else
        bare = left(reader) == 0
    end
    if bare or not code then
        if code == SUCCESS then
            words[#words + 1] = "success"
        end
        return
    end
    local whole = reader.tvb
    local values = read_values(reader, subtree)
    add_values(subtree, row, values, words, whole)
    local length = add_data(reader, subtree, row, words)
    if row and length and not reader.failed then
        check_payload(subtree, row, code, values, length)
    end
    if row and row.result.kind == "ACTION" and code == SUCCESS then
        words[#words + 1] = "success"
    end
end

-- Replies.

local function say_rpc_error(tree, words, name, text)
    words[#words + 1] = name
    tree:add_proto_expert_info(experts.rpc_error, name .. ": " .. text)
end

local function dissect_denied(reader, tree, words)
    local state = take_number(reader, tree, fields.reject_state)
    if state == 0 then
        take_number(reader, tree, fields.low)
        take_number(reader, tree, fields.high)
        say_rpc_error(tree, words, "RPC_MISMATCH", "the server speaks another version of RPC")
    elseif state == 1 then
        local why = take_number(reader, tree, fields.auth_state)
        say_rpc_error(tree, words, "AUTH_ERROR", "the server refuses the credentials"
            .. (AUTH_STATES[why] and ", " .. AUTH_STATES[why] or ""))
    elseif state then
        say_rpc_error(tree, words, "denied", ("for a reason that RPC does not know, %u"):format(state))
    end
end

local function dissect_accepted(reader, tree, call, words)
    add_auth(reader, tree, "Verifier")
    local state = take_number(reader, tree, fields.accept_state)
    if not state then
        return
    end
    if state ~= 0 then
        if state == 2 then
            take_number(reader, tree, fields.low)
            take_number(reader, tree, fields.high)
        end
        say_rpc_error(tree, words, ACCEPT_STATES[state] or ("accept status %u"):format(state),
            ACCEPT_TEXTS[state] or "a status that RPC does not know")
    elseif not call or call.row then
        dissect_result(reader, tree, call and call.row, words)
    else -- the null procedure, or something that another program answered
        words[#words + 1] = "success"
    end
end

local function dissect_reply(reader, tree, call)
    local words = { "Reply", call and name_call(tree, call) or "to a call that is not in the capture" }
    local state = take_number(reader, tree, fields.reply_state)
    if state == ACCEPTED then
        dissect_accepted(reader, tree, call, words)
    elseif state == DENIED then
        dissect_denied(reader, tree, words)
    elseif state then
        give_up(reader, ("The reply is neither accepted nor denied: %u"):format(state))
    end
    if state == ACCEPTED or state == DENIED then
        say_surplus(reader, tree, "reply")
    end
    return words
end

-- Calls and their replies belong together by their addresses, ports and XID. Frames are looked at in their order once;
-- what was found then serves whenever one is looked at again.

local waiting = {} -- calls by addresses, ports and XID, each a list in the order of the frames
local calls = {} -- by frame: the call in it
local answered = {} -- by frame: the call that the reply in it answers

function proto.init()
    waiting, calls, answered = {}, {}, {}
end

local function key_of(from, from_port, to, to_port, xid)
    return ("%s %u %s %u %u"):format(tostring(from), from_port, tostring(to), to_port, xid)
end

local function call_key(pinfo, xid)
    return key_of(pinfo.src, pinfo.src_port, pinfo.dst, pinfo.dst_port, xid)
end

local function reply_key(pinfo, xid)
    return key_of(pinfo.dst, pinfo.dst_port, pinfo.src, pinfo.src_port, xid)
end

local function remember_call(pinfo, xid, call, bytes)
    local key = call_key(pinfo, xid)
    local list = waiting[key] or {}
    local before = list[#list]
    call.frame, call.seconds, call.bytes = pinfo.number, pinfo.rel_ts, bytes
    if before and before.bytes == bytes then
        call.repeats = before.frame
    end
    list[#list + 1] = call
    waiting[key] = list
    calls[pinfo.number] = call
end

-- The first of these calls that has no reply yet; when all have one, the last.
local function find_call(pinfo, xid)
    local list = waiting[reply_key(pinfo, xid)] or {}
    for _, call in ipairs(list) do
        if not call.reply then
            return call
        end
    end
    return list[#list]
end

local function remember_reply(pinfo, xid)
    local call = find_call(pinfo, xid)
    if call then
        call.reply = call.reply or pinfo.number
        answered[pinfo.number] = call
    end
end

local function say_call_relations(tree, pinfo, call)
    if call.repeats then
        tree:add_proto_expert_info(experts.repeated,
            ("The call of frame %u again: repeated, and then carried out twice, or captured twice"):format(call.repeats))
    end
    if call.reply then
        tree:add(fields.reply_in, call.reply):set_generated()
    elseif pinfo.visited then
        tree:add_proto_expert_info(experts.no_reply)
    end
end

local function say_reply_relations(tree, pinfo, call)
    if not call then
        tree:add_proto_expert_info(experts.no_call)
        return
    end
    tree:add(fields.call_in, call.frame):set_generated()
    local passed = pinfo.rel_ts - call.seconds
    local seconds = math.floor(passed)
    tree:add(fields.time, NSTime(seconds, math.floor((passed - seconds) * 1e9 + 0.5))):set_generated()
    if call.reply ~= pinfo.number then
        tree:add_proto_expert_info(experts.answered_again,
            ("The call of frame %u was answered in frame %u already"):format(call.frame, call.reply))
    end
end

-- An ICMP error carries the beginning of the datagram that it is about: no call or reply that travels.
local function is_inside_icmp()
    return icmp_type() ~= nil
end

local function dissect_message(reader, pinfo, tree)
    local xid = take_number(reader, tree, fields.xid)
    local message_type = take_number(reader, tree, fields.message_type)
    local inside_icmp = is_inside_icmp()
    if message_type == CALL then
        local call = read_call_header(reader, tree)
        if inside_icmp then
            tree:add_proto_expert_info(experts.unreachable)
        elseif not calls[pinfo.number] then
            remember_call(pinfo, xid, call, reader.tvb():raw())
        end
        local words = dissect_call(reader, tree, call)
        if not inside_icmp then
            say_call_relations(tree, pinfo, calls[pinfo.number])
        end
        return words
    end
    if inside_icmp then
        tree:add_proto_expert_info(experts.unreachable)
    elseif not answered[pinfo.number] and not pinfo.visited then
        remember_reply(pinfo, xid)
    end
    local words = dissect_reply(reader, tree, answered[pinfo.number])
    if not inside_icmp then
        say_reply_relations(tree, pinfo, answered[pinfo.number])
    end
    return words
end

-- The first words of a call: XID, 0, the RPC version and our program.
local function is_call(tvb)
    return tvb:len() >= 16 and tvb(4, 4):uint() == CALL and tvb(8, 4):uint() == RPC_VERSION
end

local function is_call_of_ours(tvb)
    return is_call(tvb) and tvb(12, 4):uint() == PROGRAM
end

-- XID, 1 and a reply status.
local function is_reply(tvb)
    return tvb:len() >= 8 and tvb(4, 4):uint() == REPLY
end

function proto.dissector(tvb, pinfo, tree)
    if not is_call(tvb) and not is_reply(tvb) then
        return 0
    end
    local reader = new_reader(tvb)
    local subtree = tree:add(proto, tvb())
    local words = dissect_message(reader, pinfo, subtree)
    say_what_is_missing(reader, subtree)
    local text = table.concat(words, " ")
    if reader.failed then
        text = text .. (reader.cut and not reader.why and " [cut by the capture]" or " [malformed]")
    end
    pinfo.cols.protocol:set("WLAN_CONFIG")
    pinfo.cols.info:set(text)
    subtree:append_text(", " .. text)
    return tvb:len()
end

DissectorTable.get("udp.port"):add(PORT, proto)

-- The server's port is fixed, but a call is known by its program at any other, and its reply by the call's addresses.
local function dissect_elsewhere(tvb, pinfo, tree)
    if is_call_of_ours(tvb) then
        pinfo.conversation = proto
        proto.dissector(tvb, pinfo, tree)
        return true
    end
    return false
end
proto:register_heuristic("udp", dissect_elsewhere)

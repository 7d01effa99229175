# A call in C of each procedure in docs/wlan_config.x, for client.c. Numbers are 1, 2, 3 ... in the order of the
# arguments. What starts and stops the driver, or restores its settings, comes last, in an order in which each of these
# calls returns at once.
BEGIN {
    count = split("set_restore_defaults check_thread_queue pci_reconnect load init restart reset", last, " ")
    for (i = 1; i <= count; i++)
        turn["wlan_" last[i]] = i
}
/^        wlan_config_(return_code_e|result_data_t) WLAN_[A-Z0-9_]+\(/ {
    kind = $1 == "wlan_config_return_code_e" ? "CODE" : "DATA"
    name = tolower(substr($2, 1, index($2, "(") - 1))
    types = substr($0, index($0, "(") + 1)
    types = substr(types, 1, index(types, ") = ") - 1)
    values = ""
    count = types == "void" ? 0 : split(types, type, ", ")
    for (i = 1; i <= count; i++)
        values = values (type[i] ~ /^string/ ? "text" : type[i] ~ /^bool/ ? "TRUE" : i) ", "
    call = "    " (kind == "CODE" ? "report" : "report_data") "(\"" name "\", client, "
    call = call (kind == "CODE" ? "(const int *)" : "") name "_1(" values "client));"
    if (name in turn)
        late[turn[name]] = call
    else
        print call
}
END {
    for (i = 1; i in late; i++)
        print late[i]
}

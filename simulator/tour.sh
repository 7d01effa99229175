#!/bin/sh
# The tour of the simulated gateway: some forty calls of the client, each with what it made the gateway do.
#
# Runs inside the gateway (vlk_simulated_gateway tour). Below each call stand, indented, the journal lines that it
# caused. Ends with one summary line; status 1 when a call did not end as it should.
client=vlk_rpc_wlan_config_client
journal=/run/gateway/journal
calls=0
surprises=0

# Prints a command line so that it could be typed again.
show() {
    line='$'
    for word in "$@"; do
        case $word in
        *[!A-Za-z0-9_./:=-]* | '') line="$line \"$word\"" ;;
        *) line="$line $word" ;;
        esac
    done
    printf '%s\n' "$line"
}

# Prints what the gateway has done since the last time. Keys that were looked up one after another share a line.
shown=$(wc -l <"$journal")
show_journal() {
    lines=$(wc -l <"$journal")
    head -n "$lines" "$journal" | tail -n "+$((shown + 1))" | awk '
        /^read / { if (!count++) printf "      read"; printf " %s", $2; next }
        count { print ""; count = 0 }
        { print "      " $0 }
        END { if (count) print "" }'
    shown=$lines
}

# step STATUS COMMAND...: runs a command that should end with this exit status.
step() {
    expected=$1
    shift
    show "$@"
    "$@" 2>&1
    status=$?
    calls=$((calls + 1))
    if [ "$status" -ne "$expected" ]; then
        surprises=$((surprises + 1))
        echo "!! exit status $status instead of $expected"
    fi
    show_journal
    echo
}

call() {
    step 0 "$client" "$@"
}

# Shows what happens from here on, until the driver is up and the server has nothing left to do.
follow() {
    for _ in $(seq 100); do
        sleep 0.2
        show_journal
        # A daemon that was started before it may write its own line behind it.
        if grep -q '^up ath8' /run/gateway/driver && tail -n 3 "$journal" | grep -qxF "$1"; then
            echo
            return
        fi
    done
    surprises=$((surprises + 1))
    echo "!! not up after twenty seconds"
    echo
}

carrier=$(cut -d ' ' -f 1 /run/gateway/carrier)
echo "A gateway with a store of $(grep -c = /tmp/.apcfg) settings, carried by $carrier. Indented: what each call made it do."
echo
command -v rpcinfo >/dev/null && step 0 rpcinfo -p

call getNumberOfEntries
call getSsid 1
call getStatus 1
call getBssid 1
call setSsid 3 "Guest network"
call getSsid 3
call setEnable 3 1
call getChannel 1
call setChannel 1 11
call getChannel 1
call getStandard 9
call setStandard 9 ac
call getStandard 9
call getBeaconType 1
call getPossibleChannels 9
call setHtTxStream 1 2
call getHtTxStream 1
call setMacAddressControlAdd 1 02:00:00:00:00:42 steerlist
call getMacAddressControlList 1
call setWpsPushbutton 1
call getWpsStatus 1
call setRadStatEnable 1 1 30 1800
sleep 0.3
call getChannelStatistics 1
call getBasicStats 1
call getAssocDevicesNum 1
call getAssocDevice 1 0
call apScan 1
call getApScanStatus 1
call setAdvairtimeStaEntryAdd 1 28:6A:BA:4C:10:01 20
call getAdvairtimeStatsclAtftable 1
call setSoftblockBlackListAdd 1 28:6A:BA:4C:10:01
call getSoftblockBlackList 1
call getBsBss2gTempBlacklistTable 1
# The scan that was started above takes two seconds in all.
sleep 2
call getApScanStatus 1
call getApScanNumOfEntries 1
# VAP 9 is on the 5 GHz radio, which has no channel 6: the server refuses and says so.
step 1 "$client" setChannel 9 6

echo "Factory settings come from the board's other processor."
call setRestoreDefaults 2
call getSsid 3
echo "Taking the driver down takes a while, so the call only starts it. The next request waits in the queue until three"
echo "seconds after the first one's end, and brings everything up again."
call reset
call init
follow "popen /usr/sbin/vlk_rpc_wlan_config_client checkThreadQueue"
call getStatus 1

if [ "$surprises" -eq 0 ]; then
    echo "The tour is over: $calls commands, all as expected."
    exit 0
fi
echo "The tour is over: $calls commands, $surprises not as expected."
[ -s /run/gateway/server.log ] && tail -n 20 /run/gateway/server.log
exit 1

// Soft block: the daemon that keeps a black list of stations and refuses or delays their association. Its settings in
// the store, the messages that tell it of them, its list, and starting and stopping it.
//
// Touches the store, the daemon's socket (through the channel), /nvram/blackList.dat (deleted only), and runs `killall`
// and `softblock`. Service thread; loadSB and notifyWiFiRestartToSBCtrl also on lifecycle workers.
#pragma once

#include <sys/types.h>

#include "server/records.h"

// Settings of the whole device: any index. The getters give 0 for an absent key. The setters store, tell the daemon
// and, when it cannot be told within two seconds, say so on standard error. All return 0.
int wlan_getSBEnable(int index, u_int *enabled);
int wlan_setSBEnable(int index, int enabled);
int wlan_getSBBLSelMask(int index, u_int *mask);
int wlan_setSBBLSelMask(int index, u_int mask);
int wlan_getSBSelMask(int index, u_int *mask);
int wlan_setSBSelMask(int index, u_int mask);
int wlan_getSBWaitingTime(int index, u_int *time);
int wlan_setSBWaitingTime(int index, int time);
int wlan_getSBAllowTimer(int index, u_int *time);
int wlan_setSBAllowTimer(int index, int time);

// A negative index: -1, nothing is read or written. The getters read the key of their index and return -1, the output
// as it was, when it is absent. The setters store, tell the daemon as above and return 0; the first two write the bare
// key whatever the index, as the driver's scripts expect it, so that a value set for VAP 3 is not what reading VAP 3
// gives.
int wlan_getSBAuthRespStCode(int index, u_int *status);
int wlan_setSBAuthRespStCode(int index, int status);
int wlan_getSBIgnoreProbeReqType(int index, u_int *type);
int wlan_setSBIgnoreProbeReqType(int index, int type);
int wlan_getBSSClientRSSIThreshold(int index, int *rssi);
int wlan_setBSSClientRSSIThreshold(int index, int rssi);
int wlan_getBSSClientRSSIThresholdDelta(int index, int *delta);
int wlan_setBSSClientRSSIThresholdDelta(int index, int delta);  // the daemon is not told

// The black list is the daemon's, whatever the index. Adding and deleting send the first 24 characters of the MAC and
// return 0, or -1 when the daemon cannot be told. Clearing passes `which` on and returns 0; when the daemon cannot be
// told, the file that it keeps the list in is deleted. Reading returns 0: what a short answer does not cover becomes
// zero, and without an answer within two seconds the list stays as it was. Its total is the daemon's word and may be
// any number.
int wlan_setSBBlackListAdd(int index, const char *mac);
int wlan_setSBBlackListDel(int index, const char *mac);
int wlan_setSBBlackListClear(int index, int which);
int wlan_getSBBlackList(int index, wlan_sb_station_list_t *list);

// Sends the daemon one message, with its NUL. No answer is awaited. Returns 0, or -1 for a null text or when the daemon
// cannot be reached within two seconds.
int sendDataToSBCtrl(const char *data);

// Ends the daemon and, with on (any number but 0), starts it anew; it is not waited for. Always 0.
int loadSB(int on);

// Tells the daemon that the Wi-Fi was restarted; a daemon that cannot be told is started anew. Always 0.
int notifyWiFiRestartToSBCtrl(void);

// What the kernel refuses to everybody in a gateway that proot carries.
//
// Touches the calling process and, for good, all that it starts. The process that becomes proot.
#pragma once

// Lets calls that proot does not know fail as on an older kernel, so that libc uses those that it does know: their
// paths would be the host's. And nobody may signal all processes at once: they are the host's too. False with errno.
bool use_old_calls(void);

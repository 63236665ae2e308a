#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0

"""Writes to standard output, as bubblewrap takes it, the filter of system calls that ordinary containers have.

It refuses mounts and namespaces. Of clone3 a filter cannot see the flags, so that call is one that is not there, and the
C library makes do with clone.
"""

import errno
import sys

import seccomp

REFUSED = (
    "mount", "umount2", "pivot_root", "fsopen", "fspick", "fsmount", "open_tree", "move_mount", "mount_setattr",
    "unshare", "setns",
)
NEW_NAMESPACE = {
    "mount": 0x00020000, "cgroup": 0x02000000, "uts": 0x04000000, "ipc": 0x08000000, "user": 0x10000000,
    "pid": 0x20000000, "net": 0x40000000,
}

system_calls = seccomp.SyscallFilter(seccomp.ALLOW)
for name in REFUSED:
    system_calls.add_rule(seccomp.ERRNO(errno.EPERM), name)
for flag in NEW_NAMESPACE.values():
    system_calls.add_rule(seccomp.ERRNO(errno.EPERM), "clone", seccomp.Arg(0, seccomp.MASKED_EQ, flag, flag))
system_calls.add_rule(seccomp.ERRNO(errno.ENOSYS), "clone3")
system_calls.export_bpf(sys.stdout)

// Prints a seccomp filter in the form that bubblewrap's --seccomp reads. It refuses the system calls that container
// engines refuse by default and that need no capability: those that make user namespaces, read keys, use large parts of
// the kernel, or turn address randomisation off.
#include <errno.h>
#include <linux/sched.h>
#include <seccomp.h>
#include <stddef.h>
#include <sys/personality.h>
#include <unistd.h>

int main(void) {
  const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ALLOW);
  const int refused[] = {SCMP_SYS(unshare),     SCMP_SYS(setns),          SCMP_SYS(add_key),
                         SCMP_SYS(request_key), SCMP_SYS(keyctl),         SCMP_SYS(bpf),
                         SCMP_SYS(userfaultfd), SCMP_SYS(io_uring_setup), SCMP_SYS(perf_event_open)};
  int failed = filter == NULL;
  for (size_t i = 0; i < sizeof refused / sizeof *refused; ++i) {
    failed |= seccomp_rule_add(filter, SCMP_ACT_ERRNO(EPERM), refused[i], 0) != 0;
  }
  failed |= seccomp_rule_add(filter, SCMP_ACT_ERRNO(EPERM), SCMP_SYS(clone), 1,
                             SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_NEWUSER, CLONE_NEWUSER)) != 0;
  // clone3 has its flags in memory, where a filter cannot look; the C library then uses clone.
  failed |= seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) != 0;
  failed |= seccomp_rule_add(filter, SCMP_ACT_ERRNO(EPERM), SCMP_SYS(personality), 1,
                             SCMP_A0(SCMP_CMP_EQ, ADDR_NO_RANDOMIZE)) != 0;
  return failed || seccomp_export_bpf(filter, STDOUT_FILENO) != 0;
}

/// Runs a piece of a test in a process of its own, where it may change what a process has only one
/// of: limits, descriptors, user, umask.
#ifndef TESTS_SUPPORT_CHILD_H
#define TESTS_SUPPORT_CHILD_H

#include <sys/wait.h>
#include <unistd.h>

constexpr unsigned CHILD_SECONDS = 20;  // a child that hangs dies by SIGALRM
constexpr uid_t ORDINARY_USER = 65534;

/// Exit status of `work`, which returns it, or -1 when the child did not end by itself.
template <typename Work>
int inChild(Work work) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(CHILD_SECONDS);
        ::_exit(work());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Gives up root's rights for good; without them already, nothing changes.
inline void becomeOrdinaryUser() {
    if (::geteuid() != 0) return;
    if (::setgid(ORDINARY_USER) != 0 || ::setuid(ORDINARY_USER) != 0) ::_exit(99);
}

#endif  // TESTS_SUPPORT_CHILD_H

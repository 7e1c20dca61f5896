#include "Interrupt.h"

#include <csignal>
#include <cstdlib>
#include <initializer_list>

namespace
{
std::sig_atomic_t volatile s_signal = 0;
}  // namespace

void watchSignals()
{
    struct sigaction action = {};
    action.sa_handler = [](int signal) { s_signal = signal; };
    for (int const signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
    {
        struct sigaction before;
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN)  // nohup and shells' background jobs ignore some on purpose
            sigaction(signal, &action, nullptr);
    }
    std::signal(SIGXFSZ, SIG_IGN);  // the write reports that the file is too large
}

void stopIfInterrupted()
{
    if (s_signal != 0)
        throw Interrupted{s_signal};
}

void dieBySignal(int signal)
{
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    std::abort();
}

// SIGINT, SIGTERM, SIGHUP and SIGPIPE end long work in order: what is not complete is removed on the way out.

#ifndef ARXHOST_INTERRUPT_H
#define ARXHOST_INTERRUPT_H

// Raised by stopIfInterrupted. The program ends by sending itself the signal again.
struct Interrupted
{
    int m_signal;
};

// From now on these signals only leave a note, and SIGXFSZ does nothing.
void watchSignals();
// For loops that take long.
void stopIfInterrupted();
// Ends the process by that signal, which is no longer caught.
[[noreturn]] void dieBySignal(int signal);

#endif

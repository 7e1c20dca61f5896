// Keeps the library started for its own lifetime.

#ifndef ARXHOST_RUNNINGLIBRARY_H
#define ARXHOST_RUNNINGLIBRARY_H

// The crypto interface, started for the host's own service. The library drops the reason why it can't start;
// asked here first, the interface tells it.
class RunningCrypto
{
public:
    // Raises NEBException with the interface's reason.
    RunningCrypto();
    ~RunningCrypto();

    RunningCrypto(RunningCrypto const&) = delete;
    RunningCrypto& operator=(RunningCrypto const&) = delete;
};

class RunningLibrary
{
public:
    // Raises also what Arxium::initialize raises.
    RunningLibrary();
    ~RunningLibrary();

    RunningLibrary(RunningLibrary const&) = delete;
    RunningLibrary& operator=(RunningLibrary const&) = delete;

private:
    RunningCrypto m_crypto;
};

#endif

// Keeps the library started for its own lifetime.

#ifndef ARXHOST_RUNNINGLIBRARY_H
#define ARXHOST_RUNNINGLIBRARY_H

class RunningLibrary
{
public:
    // Raises NEBException with the reason where the crypto interface doesn't start.
    RunningLibrary();
    ~RunningLibrary();

    RunningLibrary(RunningLibrary const&) = delete;
    RunningLibrary& operator=(RunningLibrary const&) = delete;
};

#endif

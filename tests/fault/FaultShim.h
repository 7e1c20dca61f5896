// What the shim offers to a program that links it, so that only a part of the program meets the fault.

#ifndef ARXIUM_TESTS_FAULT_FAULTSHIM_H
#define ARXIUM_TESTS_FAULT_FAULTSHIM_H

// With FAULT_WAITS in the environment points count from beginFaults() to endFaults(), otherwise from main()
// to the end.
void beginFaults();
void endFaults();
// The allocations that are not freed yet.
long countLiveAllocations();

#endif

// The same work on several threads at once.

#ifndef ARXIUM_TESTS_SUPPORT_THREADS_H
#define ARXIUM_TESTS_SUPPORT_THREADS_H

#include <atomic>
#include <thread>
#include <vector>

// Runs work(number of the thread) on that many threads, which begin together.
template <class Work>
void onThreads(int count, Work const& work)
{
    std::atomic<int> waiting{count};
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back(
            [&, number]
            {
                for (--waiting; waiting > 0;)
                    std::this_thread::yield();
                work(number);
            });
    for (std::thread& thread : threads)
        thread.join();
}

#endif

#ifndef TESTS_SUPPORT_SMALL_STACK_H
#define TESTS_SUPPORT_SMALL_STACK_H

#include <gtest/gtest.h>

#include <pthread.h>

#include <cstddef>

namespace test {

#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t small_stack = 512 * 1024;  // frames are several times as large
#else
constexpr std::size_t small_stack = 64 * 1024;
#endif

// Runs a function in a thread with a small stack: recursion as deep as the data would not survive.
template <class Function>
void run_on_small_stack(Function function)
{
    pthread_attr_t attributes;
    pthread_t thread;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, small_stack), 0);
    const auto call = [](void* f) -> void* {
        (*static_cast<Function*>(f))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, call, &function), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace test

#endif

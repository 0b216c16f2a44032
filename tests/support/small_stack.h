#ifndef TESTS_SUPPORT_SMALL_STACK_H
#define TESTS_SUPPORT_SMALL_STACK_H

#include <gtest/gtest.h>

#include <pthread.h>

namespace test {

// Runs a function in a thread whose stack has 64 KiB: recursion as deep as the data would not survive.
template <class Function>
void run_on_small_stack(Function function)
{
    pthread_attr_t attributes;
    pthread_t thread;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 64 * 1024), 0);
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

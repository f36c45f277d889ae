// SPDX-License-Identifier: MIT
// Part of every program that is built with the address sanitizer: its search for leaks passes over what drivers
// and layers keep to the end, and nothing else.

// What a program defines stands before what its libraries define, if they can see it.
#define SEEN_BY_LIBRARIES extern "C" __attribute__((visibility("default")))

/// Libraries stay: one that is gone at the end has no name to know its leaks by.
SEEN_BY_LIBRARIES int dlclose(void*)
{
    return 0;
}

/// A leak is passed over if the name of a library or function on its stack holds one of these.
SEEN_BY_LIBRARIES const char* __lsan_default_suppressions()
{
    return "leak:libVkLayer_khronos_validation\n"
           "leak:libvulkan_lvp\n"
           "leak:libdbus\n";
}

/// Says nothing of leaks that were passed over: tests read what programs print.
SEEN_BY_LIBRARIES const char* __lsan_default_options()
{
    return "print_suppressions=0";
}

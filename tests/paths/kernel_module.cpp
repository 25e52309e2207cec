// A stand-in for the sibling module YXKernel: the tests only ask where it was loaded from.
#if defined(_WIN32)
#define KERNEL_EXPORT extern "C" __declspec(dllexport)
#else
#define KERNEL_EXPORT extern "C" __attribute__((visibility("default")))
#endif

KERNEL_EXPORT int YXKernel_Present()
{
    return 1;
}

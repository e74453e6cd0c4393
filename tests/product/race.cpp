// Two threads that write the same image, which no caller may do: a library that the thread sanitizer has instrumented
// has to say so. If it does not, then what it says of all other calls is worth nothing.
#include <lumcv/lumcv.h>

#include <array>
#include <cstdlib>
#include <thread>

int main()
{
    constexpr LumiSize size{64, 64};
    static std::array<Lum8u, 64 * 64> source, destination;
    const auto call = [] {
        for (int i = 0; i < 100; ++i)
            if (lumiAbsDiff_8u_C1R(source.data(), 64, source.data(), 64, destination.data(), 64, size) != lumOk)
                std::abort();
    };
    std::thread first(call), second(call);
    first.join();
    second.join();
    return EXIT_SUCCESS;
}

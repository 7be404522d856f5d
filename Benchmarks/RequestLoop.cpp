#include "RequestLoop.h"

#include <ctime>
#include <iostream>
#include <string>
#include <sys/resource.h>

namespace
{

double ProcessorMicroseconds()
{
    std::timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

long PeakKilobytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

int ServeRequests(const std::function<bool()> &request)
{
    std::string line;
    while (std::getline(std::cin, line))
    {
        const double start = ProcessorMicroseconds();
        if (!request())
        {
            std::cerr << "the request failed\n";
            return 1;
        }
        const double end = ProcessorMicroseconds();
        std::cout << end - start << ' ' << PeakKilobytes() << std::endl;
    }
    return 0;
}

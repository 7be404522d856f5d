// One entry more in an error file.
// Usage: ErrorFileRequests ERROR-FILE

#include "ErrorFile.h"
#include "RequestLoop.h"

int main(int argumentCount, char **arguments)
{
    if (argumentCount != 2)
        return 2;
    return ServeRequests(
        [&]
        {
            return WriteErrorEntry(arguments[1], "Failed to initialise", "BiosConfigModule - GetData",
                                   "BiosConfiguration", "120", "Jan  1 2020") == StatusCode::Success;
        });
}

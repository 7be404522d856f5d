// The same requests to the hand-written report.
// Usage: HandWrittenRequests DUMP-FILE REPORT-FILE FORMAT

#include "FormatNames.h"
#include "HandWrittenReport.h"
#include "RequestLoop.h"

#include <libxml/xmlerror.h>

namespace
{

void IgnoreError(void * /*context*/, xmlErrorPtr /*error*/) {}

} // namespace

int main(int argumentCount, char **arguments)
{
    const std::optional<OutputKind> kind = argumentCount == 4 ? FormatOfName(arguments[3]) : std::nullopt;
    if (!kind)
        return 2;
    xmlSetStructuredErrorFunc(nullptr, IgnoreError);
    return ServeRequests([&] { return !HandWrittenReport(*kind, arguments[1], arguments[2]).empty(); });
}

#include "answers.h"

#include <cstdio>
#include <cstring>

namespace cli {

int usage(const char* text)
{
    while (*text != '\0') {
        const size_t length = strcspn(text, "\n");
        printf("%.*s\r\n", static_cast<int>(length), text);
        text += length + 1;
    }
    return 0;
}

int invalid()
{
    puts("Input Parameter Invalid\r");
    return 65535;
}

int result(uint32_t code)
{
    return static_cast<int>(code);
}

int result(uint32_t code, const char* success)
{
    if (code == 0) puts(success);
    return result(code);
}

}  // namespace cli

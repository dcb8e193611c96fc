// What a handler answers: its own return value, and the lines that every setting prints alike.
#ifndef ZR_NEXA_CLI_ANSWERS_H
#define ZR_NEXA_CLI_ANSWERS_H

#include <cstdint>

namespace cli {

// Prints a setting's usage text. Each of its lines ends in a line feed, each printed one in carriage return and line
// feed.
int usage(const char* text);
// Prints that the words were not accepted.
int invalid();
// An interface's result code as it stands.
int result(uint32_t code);
// The same; code 0 is told with a line, as puts takes it.
int result(uint32_t code, const char* success);

}  // namespace cli

#endif

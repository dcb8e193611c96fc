#ifndef ZR_NEXA_CLI_DISPATCH_H
#define ZR_NEXA_CLI_DISPATCH_H

namespace cli {

// Finds the handler of argv[1] and argv[2], calls it with all words and prints the verdict. At least three words.
// Returns what the handler returned; 65535 for words that nobody knows and for a setting without a handler.
int zr_nexa_dispatch(int argc, char** argv);

}  // namespace cli

#endif

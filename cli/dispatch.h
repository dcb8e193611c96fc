#ifndef ZR_NEXA_CLI_DISPATCH_H
#define ZR_NEXA_CLI_DISPATCH_H

namespace cli {

// Finds the handler of argv[1] and argv[2], calls it with all words and prints the verdict. At least three words.
void zr_nexa_dispatch(int argc, char** argv);

}  // namespace cli

#endif

// The menus that too few words are answered with.
#ifndef ZR_NEXA_CLI_MENU_H
#define ZR_NEXA_CLI_MENU_H

#include <cstddef>

namespace cli {

constexpr size_t kNameColumn = 20;  // characters; the description begins behind them

// A menu while it is composed. What does not fit is cut off.
class MenuText {
public:
    void append(const char* piece);
    // One line. Name, padding, then back to the description's column: of a name longer than its column only the first
    // 20 characters stay, with no blank behind them.
    void append_row(const char* name, const char* description);
    const char* text() const
    {
        return text_;
    }

private:
    char text_[2048] = {};
    size_t length_ = 0;
};

// One word: the categories. Two words: the settings of category argv[1].
void zr_nexa_print_menu(int argc, char** argv);

}  // namespace cli

#endif

// The commands: categories in menu order, each with its settings. Dispatcher and menus read nothing else.
#ifndef ZR_NEXA_CLI_COMMAND_TABLE_H
#define ZR_NEXA_CLI_COMMAND_TABLE_H

#include <cstdint>

namespace cli {

// The menus look only at supported, the dispatcher only at handler: a setting may be hidden and callable.
struct Setting {
    int32_t supported;  // low byte non-zero: listed in its category's menu
    const char* name;
    int (*handler)(int argc, char** argv);  // null: not supported now
    const char* description;                // null only where the row is never listed
};

struct Category {
    int32_t supported;  // low byte non-zero: listed in the main menu
    int32_t count;      // rows of settings
    const char* name;
    const Setting* settings;
    const char* description;
};

constexpr int kCategoryCount = 7;
extern const Category kCategories[kCategoryCount];

// By exact name; null: there is none of that name.
const Category* find_category(const char* name);
const Setting* find_setting(const Category& category, const char* name);

}  // namespace cli

#endif

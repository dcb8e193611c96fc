#include "dispatch.h"

#include <cstdio>

#include "words.h"

namespace cli {

const Category* find_category(const char* name)
{
    for (const Category& category : kCategories) {
        if (same(category.name, name)) return &category;
    }
    return nullptr;
}

}  // namespace cli

namespace {

const cli::Setting* find_setting(const cli::Category& category, const char* name)
{
    for (int32_t i = 0; i < category.count; ++i) {
        if (cli::same(category.settings[i].name, name)) return &category.settings[i];
    }
    return nullptr;
}

}  // namespace

void zr_nexa_dispatch(int argc, char** argv)
{
    const cli::Category* const category = cli::find_category(argv[1]);
    const cli::Setting* const setting = category != nullptr ? find_setting(*category, argv[2]) : nullptr;
    if (setting == nullptr) {
        cli::invalid();
        return;
    }
    if (setting->handler == nullptr) {
        puts("Setting Not Support now\r");
        return;
    }
    const int code = setting->handler(argc, argv);
    if (code == 0) {
        puts("CMD OK\r");
    } else {
        printf("CMD Error#0x%x\r\n", static_cast<unsigned int>(code));
    }
}

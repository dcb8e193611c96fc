// What the command knows, for its page and for completion: a record for each setting, made from the tables, with its
// usage text behind it. Records and their pieces are parted by the control bytes that ASCII has for it.
#include <cstdio>

#include "command_table.h"

int main()
{
    for (const cli::Category& category : cli::kCategories) {
        for (int32_t i = 0; i < category.count; ++i) {
            const cli::Setting& setting = category.settings[i];
            printf("\x1e%s\x1f%d\x1f%s\x1f%s\x1f%d\x1f%d\x1f%s\x1f", category.name, category.supported & 0xFF,
                   category.description, setting.name, setting.supported & 0xFF, setting.handler != nullptr ? 1 : 0,
                   setting.description != nullptr ? setting.description : "");
            if (setting.handler == nullptr) continue;
            // With three words a handler prints its usage text and asks nobody.
            char program[] = "zr_nexa";
            char* words[] = {program, const_cast<char*>(category.name), const_cast<char*>(setting.name), nullptr};
            setting.handler(3, words);
        }
    }
    return 0;
}

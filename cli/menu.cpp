#include "menu.h"

#include <algorithm>
#include <cstdio>

#include "command_table.h"

namespace cli {

namespace {

constexpr char kPadding[] = "                    ";
static_assert(sizeof(kPadding) - 1 == kNameColumn, "the padding fills the name's column");

constexpr bool listed(int32_t supported)
{
    return (supported & 0xFF) != 0;
}

}  // namespace

void MenuText::append(const char* piece)
{
    const size_t room = sizeof(text_) - length_;
    const int piece_length = snprintf(text_ + length_, room, "%s", piece);
    length_ += std::min(static_cast<size_t>(piece_length), room - 1);
}

void MenuText::append_row(const char* name, const char* description)
{
    const size_t start = length_;
    append(name);
    append(kPadding);
    length_ = std::min(start + kNameColumn, length_);
    append(description);
    append("\r\n");
}

void zr_nexa_print_menu(int argc, char** argv)
{
    MenuText menu;
    menu.append("Korvane MoblieAP CMD\r\n\r\n");
    if (argc < 2) {
        menu.append("Main Setting List:\r\n");
        for (const Category& category : kCategories) {
            if (listed(category.supported)) menu.append_row(category.name, category.description);
        }
    } else if (const Category* const category = find_category(argv[1]); category != nullptr) {
        menu.append(category->name);
        menu.append(" Setting List:\r\n");
        for (int32_t i = 0; i < category->count; ++i) {
            const Setting& setting = category->settings[i];
            if (listed(setting.supported)) menu.append_row(setting.name, setting.description);
        }
    } else {
        menu.append("Input Setting Invalid\r\n");
    }
    printf("%s\r\n", menu.text());
}

}  // namespace cli

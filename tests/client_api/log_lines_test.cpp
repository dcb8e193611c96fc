// All records of the library name the same source file, so their lines must differ. The records are read out of the
// loaded library itself.
#include <dlfcn.h>
#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

struct Record {
    uint16_t line;
    uint16_t subsystem;
    uint32_t level;
    const char* format;
    const char* source;
};

struct Range {
    uintptr_t begin;
    uintptr_t end;
    bool writable;
};

struct Library {
    std::string name;
    std::vector<Range> loaded;
};

int find_library(dl_phdr_info* info, size_t, void* data)
{
    auto* const library = static_cast<Library*>(data);
    if (std::string(info->dlpi_name).find(library->name) == std::string::npos) return 0;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const auto& header = info->dlpi_phdr[i];
        if (header.p_type != PT_LOAD) continue;
        const uintptr_t begin = info->dlpi_addr + header.p_vaddr;
        library->loaded.push_back({begin, begin + header.p_memsz, (header.p_flags & PF_W) != 0});
    }
    return 1;
}

bool inside(const Library& library, const void* pointer)
{
    const auto address = reinterpret_cast<uintptr_t>(pointer);
    for (const auto& range : library.loaded) {
        if (address >= range.begin && address < range.end) return true;
    }
    return false;
}

// The scan passes over whatever lies between the library's variables, also where a sanitizer keeps its own marks.
__attribute__((no_sanitize("address"), no_sanitize("undefined"))) Record read_at(uintptr_t address)
{
    return *reinterpret_cast<const Record*>(address);
}

// Records hold pointers, so the loader keeps them in the writable segment it relocates.
std::vector<Record> records_of(const Library& library)
{
    std::vector<Record> records;
    for (const auto& range : library.loaded) {
        if (!range.writable) continue;
        for (uintptr_t at = range.begin; at + sizeof(Record) <= range.end; at += alignof(Record)) {
            const Record record = read_at(at);
            const bool plausible = record.subsystem == 65 && (record.level == 4 || record.level == 8) &&
                                   inside(library, record.format) && inside(library, record.source);
            if (!plausible || std::strcmp(record.source, "zr_nexa_client_api") != 0) continue;
            records.push_back(record);
            at += sizeof(Record) - alignof(Record);
        }
    }
    return records;
}

TEST(LogLinesTest, AreUniqueInTheWholeLibrary)
{
    void* const handle = dlopen(ZR_NEXA_LIBRARY, RTLD_NOW);
    ASSERT_NE(handle, nullptr) << dlerror();
    Library library{"libzr_nexa_client_api.so", {}};
    ASSERT_EQ(dl_iterate_phdr(find_library, &library), 1);

    const auto records = records_of(library);
    EXPECT_GT(records.size(), 5u) << "the records were not found";
    std::map<uint16_t, std::string> seen;
    for (const auto& record : records) {
        EXPECT_NE(record.line, 0);
        EXPECT_EQ(std::string(record.format).rfind("[%s]%s(): ", 0), 0u) << record.format;
        const auto inserted = seen.emplace(record.line, record.format);
        EXPECT_TRUE(inserted.second) << record.line << ": " << record.format << " and " << inserted.first->second;
    }
    EXPECT_THAT(seen, testing::Contains(testing::Pair(testing::_, "[%s]%s(): SET gre ipa option")));
    dlclose(handle);
}

}  // namespace

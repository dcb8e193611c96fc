// The fenced blocks of a page of documentation.
#ifndef DOCUMENT_H
#define DOCUMENT_H

#include <fstream>
#include <string>
#include <vector>

struct FencedBlock {
    std::string heading;  // the nearest one before it, without its signs
    std::string kind;     // what stands behind the opening fence
    std::vector<std::string> lines;
};

inline std::vector<FencedBlock> fenced_blocks(const std::string& page)
{
    std::vector<FencedBlock> blocks;
    std::ifstream stream(page);
    std::string heading;
    bool inside = false;
    for (std::string line; std::getline(stream, line);) {
        if (line.rfind("```", 0) == 0) {
            inside = !inside;
            if (inside) blocks.push_back({heading, line.substr(3), {}});
        } else if (inside) {
            blocks.back().lines.push_back(line);
        } else if (!line.empty() && line[0] == '#') {
            heading = line.substr(line.find_first_not_of("# "));
        }
    }
    return blocks;
}

#endif

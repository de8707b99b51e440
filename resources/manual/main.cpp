// Writes the manual: lumafold_manual TEXTS FILE.HTML
#include <fstream>
#include <iostream>

#include "resources/manual/page.h"
#include "resources/manual/text.h"

int main(int count, char** words) {
    if (count != 3) {
        std::cerr << "usage: lumafold_manual TEXTS FILE.HTML\n";
        return 2;
    }
    try {
        const std::string page = lumafold::manual::MakePage(words[1]);
        std::ofstream file(words[2], std::ios::binary);
        file << page;
        file.close();
        if (!file) throw lumafold::manual::Fault(std::string(words[2]) + ": cannot be written");
    } catch (const lumafold::manual::Fault& fault) {
        std::cerr << "lumafold_manual: " << fault.what() << '\n';
        return 1;
    }
    return 0;
}

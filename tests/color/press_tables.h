#pragma once

// The press characterization tables of Debian's package icc-profiles-free.

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

struct Patches {
    std::vector<std::string> names;
    std::vector<float> inks, xyz, lab;  // four percentages and twice three values a patch
};

// The columns are SAMPLE_ID CMYK_C CMYK_M CMYK_Y CMYK_K XYZ_X XYZ_Y XYZ_Z LAB_L LAB_A LAB_B in all of them.
inline Patches readPatches(const std::string &table) {
    std::ifstream file(KVBASE_PRESS_TABLES "/" + table + ".ti3");
    std::string line;
    do {
        std::getline(file, line);
    } while (file && (line.rfind("BEGIN_DATA", 0) != 0 || line.rfind("BEGIN_DATA_FORMAT", 0) == 0));
    Patches patches;
    while (std::getline(file, line) && line.rfind("END_DATA", 0) != 0) {
        std::istringstream columns(line);
        std::string name;
        float inks[4], xyz[3], lab[3];
        columns >> name >> inks[0] >> inks[1] >> inks[2] >> inks[3];
        if (!(columns >> xyz[0] >> xyz[1] >> xyz[2] >> lab[0] >> lab[1] >> lab[2])) continue;
        patches.names.push_back(name);
        patches.inks.insert(patches.inks.end(), inks, inks + 4);
        patches.xyz.insert(patches.xyz.end(), xyz, xyz + 3);
        patches.lab.insert(patches.lab.end(), lab, lab + 3);
    }
    return patches;
}

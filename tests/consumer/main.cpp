#include <kvbase/kvbase.h>

#include <iostream>
#include <sstream>

// Reads a value, changes it by path, and catches an exception of the library by its type.
int main() {
    std::istringstream text("<< /press << /name (Sheet-fed) /inks 4 >> >>");
    KV_UValDict dict(0);
    dict.ReadTextFile(text, KV_String());
    dict.SetValue("press:inks", 6L, 0);
    bool caught = false;
    try {
        std::istringstream broken("<< /press ");
        KV_UVal *value = nullptr;
        KV_ReadUValTxt(broken, value);
    } catch (const KV_FileException &) {
        caught = true;
    }
    bool good = caught && dict.GetValue("press:inks", 0L, 0) == 6;
    std::cout << "kvbase " << KV_KalvorVersion() << (good ? " works\n" : " FAILS\n");
    return good ? 0 : 1;
}

// A process that builds, reads and removes links in a folder that another one uses, too. Prints what it did;
// exits with 1 when it read something that was not a whole link, or did too little to tell.

#include <kvbase/runtime/kv_exception.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <thread>

#include "../com/profile_host.h"

namespace {

struct Record {
    int built = 0, read = 0, found = 0, vanished = 0, removals = 0, faults = 0;
};

bool isWhole(ITestLink &link, const KV_CheckSum &sum) {
    if (link.Values().size() != kTestLinkValues) return false;
    for (std::size_t i = 0; i < kTestLinkValues; ++i)
        if (link.Values()[i] != testLinkValue(sum, i)) return false;
    return true;
}

// A link from the other's file, or built and stored.
void fetchOrBuild(ProfileHost &host, std::uint32_t number, Record &record) {
    KV_CheckSum sum = sumOf(number);
    KV_ILinkCore *object = nullptr;
    const bool isInMemory = host.cacher().InMemCache(&sum);
    try {
        host.cacher().GetLinkCore(&sum, 1, object, false, 0);
        if (object == nullptr) {
            host.cacher().SetLink(&sum, host.builder(sum).get(), false, KV_CACHING_AS_SET);
            ++record.built;
        } else {
            if (!isWhole(static_cast<ITestLink &>(*object), sum)) ++record.faults;
            ++(isInMemory ? record.found : record.read);
        }
    } catch (const KV_FileException &e) {  // removed between the look and the opening
        e.GetFileErrorId() == KV_FileException::OpenRdError ? ++record.vanished : ++record.faults;
    } catch (const KV_Exception &) {
        ++record.faults;
    }
    host.cacher().UnRegister(&sum, 1, false);
    if (object != nullptr) object->Release();
}

}  // namespace

// Each process says that it is there, and waits for the other one.
bool meet(const std::filesystem::path &folder, const std::string &own) {
    std::ofstream(folder / ("here" + own)) << own;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!std::filesystem::exists(folder / (own == "1" ? "here2" : "here1"))) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

int main(int argc, char **argv) {
    if (argc != 3 || !meet(pathFromUtf8(argv[1]).parent_path(), argv[2])) return 2;
    ProfileHost host;
    host.cacher().SetCachingMethod(KV_CACHING_FILES);
    host.manager().SetCachingPath(specOf(std::string(argv[1]) + '/'));
    std::mt19937 random(static_cast<unsigned>(std::stoul(argv[2])));
    Record record;
    for (int round = 0; round < 60; ++round) {
        for (int step = 0; step < 20; ++step)
            fetchOrBuild(host, random() % 8, record);
        host.cacher().SetMaxCacheSize(0);
        host.manager().RemoveMemCache();
        if (round % 2 == 1) {
            random() % 2 == 0 ? host.manager().RemoveFileCache() : host.manager().RemoveOldLinks();
            ++record.removals;
        }
    }
    std::cout << record.built << " built, " << record.read << " read from files, " << record.found
              << " found in memory, " << record.vanished << " vanished, " << record.removals << " removals, "
              << record.faults << " faults\n";
    return record.faults == 0 && record.built >= 10 && record.read >= 100 ? 0 : 1;
}

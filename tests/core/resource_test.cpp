#include "core/io/file.h"
#include "core/io/resource_file_engine.h"
#include "core/io/resource_info.h"
#include "core/tools/compression.h"
#include "tests/core/test_file.h"
#include "tests/core/text.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <thread>

#include <android/log.h>

namespace {

bool add(const std::string& path, const std::string& content) {
    return CZeResourceInfo::registerResource(name(path),
                                             CZeByteArray(content.data(), static_cast<int>(content.size())));
}
bool addCompressed(const std::string& path, const CZeByteArray& content) {
    return CZeResourceInfo::registerResource(name(path), content, CZeResourceInfo::Compressed);
}
bool take(const std::string& path) {
    return CZeResourceInfo::unregisterResource(name(path));
}

TEST(Resource, ReadsLikeAFile) {
    const LogCapture log;
    const std::string content = pattern(50000);
    ASSERT_TRUE(add(":/luts/warm", content) && add(":/luts/empty", ""));
    ASSERT_TRUE(addCompressed(":/luts//\xC3\xA9", ZeCompress(content.data(), 50000)));
    ASSERT_TRUE(addCompressed(":/none", ZeCompress("", 0)));
    std::string tree;
    for (const CZeResourceInfo& node : CZeResourceInfo::find(name(":/luts")).children())
        tree += utf8(node.name()) + (node.isCompressed() ? " compressed, " : ", ");
    EXPECT_EQ(tree, "empty, warm, \xC3\xA9 compressed, ");
    for (const char* const path : {":/luts/warm", ":/luts/\xC3\xA9"}) {
        CZeFile file(name(path));
        EXPECT_TRUE(file.exists() && file.size() == 50000 && file.open(Ze::ReadOnly)) << path;
        EXPECT_TRUE(take(path) && !file.exists());
        EXPECT_EQ(bytes(file.readAll()), content);
        EXPECT_TRUE(file.seek(49990));
        EXPECT_EQ(bytes(file.read(100)), content.substr(49990));
        EXPECT_TRUE(file.seek(60000) && !file.read(100).isNull() && file.size() == 50000);
        EXPECT_FALSE(file.map(0, 1) || file.unmap(nullptr));
    }
    for (const char* const path : {":/luts/empty", ":/none"})
        EXPECT_TRUE(CZeFile(name(path)).open(Ze::ReadOnly) && take(path) && !take(path)) << path;
    EXPECT_TRUE(CZeResourceInfo::find(name(":/")).children().empty());
}

TEST(Resource, RefusesWhatIsNotRegisteredOrNotReading) {
    const LogCapture log;
    const TempDirectory directory;
    ASSERT_TRUE(addCompressed(":/a/broken", "no stream") && add(":/a/plain", "plain"));
    const std::tuple<const char*, int, const char*> rows[] = {
        {":/b", Ze::ReadOnly, "No such file or directory"},
        {":/a/plain/below", Ze::ReadOnly, "No such file or directory"},
        {":/a", Ze::ReadOnly, "file to open is a directory"},
        {":/a/broken", Ze::ReadOnly, "Resource is corrupted"},
        {":/a/plain", Ze::ReadWrite, "Read-only file system"},
        {":/new", Ze::WriteOnly, "Read-only file system"},
    };
    for (const auto& [path, mode, text] : rows) {
        CZeFile file(name(path));
        EXPECT_TRUE(!file.open(mode) && file.error() == Ze::FileErrOpen) << path;
        EXPECT_EQ(utf8(file.errorString()), text) << path;
    }
    CZeFile plain(name(":/a/plain"));
    EXPECT_FALSE(plain.remove() || plain.rename(name(directory / "copy")));
    EXPECT_EQ(utf8(plain.errorString()) + listing(directory), "Cannot remove source file");
    CZeResourceFileEngine engine(name(":/a/plain"));
    EXPECT_TRUE(CZeResourceFileEngine(name(":/a")).isDirectory());
    EXPECT_FALSE(engine.isDirectory());
    ASSERT_TRUE(engine.open(Ze::ReadOnly));
    EXPECT_FALSE(engine.seek(-6));
    EXPECT_EQ(engine.error(), Ze::FileErrPosition);
    EXPECT_EQ(engine.write("x", 1), -1);
    EXPECT_FALSE(engine.map(0, 1));
    EXPECT_FALSE(engine.unmap(nullptr));
    for (const char* const path : {"", "a", ":/", "/a", ":/a/../c", ":/."})
        EXPECT_FALSE(add(path, "x")) << path;
    for (const char* const path : {":/a", ":/", "a"})
        EXPECT_FALSE(take(path)) << path;
    EXPECT_TRUE(take(":/a/broken"));
    EXPECT_TRUE(take(":/a/plain"));
}

// '!' sorts before '/', which must not come between a directory and what is in it.
TEST(Resource, NamesMakeATree) {
    const LogCapture log;
    for (const char* const path : {":/x/a!", ":/x/a/b", ":/x/a!b", ":/x/aa"})
        ASSERT_TRUE(add(path, "x")) << path;
    for (const char* const path :
         {":/x", ":/x/a", ":/x//a/", ":/x/a/b", ":/x/a/b/c", ":/x/a!/b", ":/x/a!/b/c"})
        EXPECT_FALSE(add(path, "x")) << path;
    EXPECT_EQ(log.texts().back(), "CZeResourceInfo::registerResource: Path is taken: :/x/a!/b/c");
    const CZeResourceInfo x = CZeResourceInfo::find(name(":/x/"));
    std::string tree;
    for (const CZeResourceInfo& node : x.children())
        tree += utf8(node.name()) + (node.isDirectory() ? "/ " : " ");
    EXPECT_EQ(tree, "a/ a! a!b aa ");
    EXPECT_EQ(utf8(x.name()), "x");
    for (const char* const path : {":/x/a!", ":/x/a/b", ":/x/a!b", ":/x/aa"})
        EXPECT_TRUE(take(path)) << path;
    EXPECT_FALSE(CZeResourceInfo::find(name(":/x")).exists());
    EXPECT_TRUE(add(":/x", "x")); // and is a file now
    EXPECT_TRUE(x.children().empty());
    EXPECT_TRUE(take(":/x"));
}

TEST(Resource, MayBeDeep) {
    std::string path = ":";
    for (int i = 0; i < 60000; ++i)
        path += "/d";
    for (const char* const last : {"/x", "/y"})
        EXPECT_TRUE(add(path + last, last));
    EXPECT_EQ(CZeResourceInfo::find(name(path)).children().size(), 2u);
    EXPECT_TRUE(CZeResourceInfo::find(name(":/d")).isDirectory());
    for (const char* const last : {"/x", "/y"})
        EXPECT_TRUE(take(path + last));
}

TEST(Resource, MayBeUsedByWhoReadsTheLog) {
    const LogCapture restoresTheLogger;
    static bool hasFound = false;
    __android_log_set_logger([](const __android_logger_data*, const char*) {
        hasFound = CZeResourceInfo::find(name(":/known")).exists();
    });
    EXPECT_TRUE(add(":/known", ""));
    EXPECT_FALSE(add(":/known", ""));
    EXPECT_TRUE(hasFound);
    EXPECT_TRUE(take(":/known"));
}

TEST(Resource, AnyThreadMayRegister) {
    std::vector<int> failures(4);
    std::vector<std::thread> threads;
    for (int& failed : failures) {
        threads.emplace_back([&failed, path = ":/shared/" + std::to_string(&failed - failures.data())] {
            for (int i = 0; i < 200; ++i) {
                CZeFile file(name(path));
                const bool isOpen = add(path, "some bytes") && file.open(Ze::ReadOnly) && take(path);
                failed += !isOpen || bytes(file.readAll()) != "some bytes";
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(failures, testing::Each(0));
}

} // namespace

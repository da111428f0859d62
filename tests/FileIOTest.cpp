#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "tests/support/Child.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "zarnsys/util/FileIO.h"
#include "zarnsys/util/ZarnSysEx.h"

namespace {

using Lines = std::vector<std::string>;

class FileIOTest : public ::testing::Test {
protected:
    TempDir dir_;
    LogCapture log_;

    /// Expects that `action` throws `message` and the text of `error`, and logs the same.
    template <typename Action>
    void expectFailure(const std::string& message, int error, Action action) {
        log_.take();
        const std::string text = message + ". Error: " + std::strerror(error);
        try {
            action();
            ADD_FAILURE() << "nothing thrown instead of: " << text;
        } catch (ZarnSysEx& exception) {
            EXPECT_EQ(exception.what(), text);
            EXPECT_NE(static_cast<std::exception&>(exception).what(), text);
        }
        EXPECT_EQ(log_.take().back(), "128 ERROR [ ] " + text + "\n");
        EXPECT_EQ(log_.error(), error);
        EXPECT_NE(log_.file().find("FileIO.cpp"), std::string::npos);
    }

    static std::string load(FileIO& file) {
        std::stringstream text;
        file.load(text);
        return text.str();
    }
};

TEST_F(FileIOTest, NamesAreBuiltAndTakenApart) {
    const struct {
        Lines list;
        std::string name, path, base, extension;
    } cases[] = {
        {{"/", "data", "f1.fits"}, "/data/f1.fits", "/data", "f1.fits", "fits"},
        {{"data", "/f1"}, "data//f1", "data/", "f1", ""},
        {{"", "a"}, "a", ".", "a", ""},
        {{"a", ""}, "a/", "a", "", ""},
        {{"/f1.tar.gz"}, "/f1.tar.gz", "/", "f1.tar.gz", "gz"},
        {{"/data/set.2", "readme"}, "/data/set.2/readme", "/data/set.2", "readme", "2/readme"},
        {{}, "", ".", "", ""},
        {{"name."}, "name.", ".", "name.", ""},
    };
    for (const auto& [list, name, path, base, extension] : cases) {
        FileIO file(list, true, false);
        EXPECT_EQ(log_.take(), Lines{"4 DEBUG [ ] Built fileName: " + name + "\n"});
        EXPECT_EQ(file.getCompleteName(), name);
        EXPECT_EQ(file.getPath(), path);
        EXPECT_EQ(file.getBaseName(), base);
        EXPECT_EQ(file.getExtension(), extension);
    }
}

TEST_F(FileIOTest, ExtensionsAreAddedNeverReplaced) {
    const char* cases[][3] = {{"f1.txt", "fits", "f1.txt.fits"},
                              {"f1.fits", "fits", "f1.fits"},
                              {"a.b", "", "a.b."},
                              {"a", "", "a"}};
    for (const auto& [name, extension, result] : cases) {
        FileIO file(std::string(name), true, false);
        log_.take();
        EXPECT_EQ(file.setExtension(extension).getCompleteName(), result);
        const std::string line = std::string("4 DEBUG [ ] Adding extension - setting internal ") +
                                 "filename to: " + name + "." + extension + "\n";
        EXPECT_EQ(log_.take(), std::strcmp(name, result) == 0 ? Lines{} : Lines{line});
    }
}

TEST_F(FileIOTest, ItsOwnNameIsAnArgumentLikeAnyOther) {
    FileIO file(std::string("a"), true, true);
    EXPECT_EQ(file.addPath(file.getCompleteName()).getCompleteName(), "a/a");
    EXPECT_EQ(file.setFileName(file.getBaseName()).getCompleteName(), "a");
    EXPECT_EQ(file.setExtension(file.getCompleteName()).getCompleteName(), "a.a");
    EXPECT_EQ(file.setFileName(file.getCompleteName()).getCompleteName(), "a.a");
    std::string& extension = file.getExtension();
    file.getCompleteName() = "b";
    EXPECT_EQ(file.setExtension(extension).getCompleteName(), "b.a") << "a cache grown stale";
    file.setFileName(dir_ / "f").write("text");
    file.rename(file.getCompleteName()).open(file.getCompleteName(), true, false);
    EXPECT_EQ(load(file), "text");
}

TEST_F(FileIOTest, WritesFromTheStartInOneCallAndKeepsTheRest) {
    dir_.put("f", "hello world");
    ::chmod((dir_ / "f").c_str(), 0600);
    FileIO file(dir_ / "f", true, true);
    log_.take();
    file.write("ab").write(std::string("c\0d", 3));
    const std::string line = "4 DEBUG [ ] Writing into file: " + (dir_ / "f") + ". Buffer length: ";
    EXPECT_EQ(log_.take(), (Lines{line + "2\n", line + "1\n"}));
    EXPECT_EQ(dir_.get("f"), "abclo world");
    EXPECT_EQ(dir_.mode("f"), 0664);
    EXPECT_EQ(load(file), "lo world") << "reading shares the offset";
    file.setFileName(dir_ / "g").write("");
    EXPECT_EQ(dir_.mode("g"), 0664);
}

TEST_F(FileIOTest, LoadsChunksUpToTheirNulBytes) {
    const std::string chunk(1024, 'x');
    dir_.put("two", chunk + chunk);
    dir_.put("nul", std::string("a\0b", 3) + std::string(1021, 'y') + "c");
    FileIO file(dir_ / "two", true, true);
    std::stringstream text("kept ", std::ios::in | std::ios::out | std::ios::ate);
    file.load(text).load(text);
    EXPECT_EQ(text.str(), "kept " + chunk + chunk);
    EXPECT_EQ(load(file.setFileName(dir_ / "nul")), "ac");
    EXPECT_EQ(load(file.setFileName(dir_ / "sub/new")), "");
    EXPECT_EQ(dir_.mode("sub/new"), 0664);
    EXPECT_EQ(dir_.mode("sub"), 0755);
}

TEST_F(FileIOTest, OpenCreatesTheNewNamesDirectoryOnly) {
    FileIO file(dir_ / "old/f", true, true);
    file.open(dir_ / "new/f", true, true);
    EXPECT_TRUE(file.exists());
    EXPECT_EQ(dir_.mode("old"), -1);
    expectFailure("Error creating path: " + (dir_ / "a/b"), ENOENT,
                  [&] { file.open(dir_ / "a/b/f", true, true); });
    EXPECT_EQ(file.getCompleteName(), dir_ / "new/f");
    EXPECT_EQ(load(file), "") << "no file was left open: the old name is opened again";
}

TEST_F(FileIOTest, FailuresNameActionNameAndReason) {
    FileIO file(dir_ / "f", true, true);
    file.write("text");
    const std::string folder = dir_ / "";
    expectFailure("Error opening file: " + folder, EISDIR, [&] { file.open(folder, true, true); });
    EXPECT_EQ(file.getCompleteName(), dir_ / "f");
    std::stringstream text;
    expectFailure("Error reading from file: " + (dir_ / "f"), EBADF, [&] { file.load(text); });
    expectFailure("Error writing to file: " + (dir_ / "f"), EBADF, [&] { file.write("x"); });
    EXPECT_EQ(load(file.close()), "text");
    expectFailure("Error renaming file from: " + (dir_ / "f") + " to: " + (dir_ / "no/g"), ENOENT,
                  [&] { file.rename(dir_ / "no/g"); });
    EXPECT_EQ(load(file), "text");
    FileIO reader(dir_ / "f", true, false);
    expectFailure("Error writing to file: " + (dir_ / "f"), EBADF, [&] { reader.write("x"); });
    FileIO neither(dir_ / "f", false, false);
    expectFailure("Error reading from file: " + (dir_ / "f"), EBADF, [&] { neither.load(text); });
    expectFailure("Error executing stats() on path: ", ENOENT, [&] { file.clear().isFile(); });
}

TEST_F(FileIOTest, APartialWriteIsAFailure) {
    EXPECT_EQ(inChild([&] {
                  ::signal(SIGXFSZ, SIG_IGN);
                  const rlimit limit = {3, 3};
                  ::setrlimit(RLIMIT_FSIZE, &limit);
                  expectFailure("Error writing to file: " + (dir_ / "f"), 0,
                                [&] { FileIO(dir_ / "f", true, true).write("abcdef"); });
                  return HasFailure() ? 1 : 0;
              }),
              0);
    EXPECT_EQ(dir_.get("f"), "abc");
}

TEST_F(FileIOTest, RenamesTestsAndRemoves) {
    dir_.put("g", "replaced");
    FileIO file(dir_ / "f", true, true);
    file.write("abc").rename(dir_ / "g").write("d");
    EXPECT_EQ(dir_.get("g"), "dbc");
    EXPECT_TRUE(file.exists() && file.isFile() && file.pathExists());
    log_.take();
    EXPECT_EQ(file.remove(false).getCompleteName(), "");
    EXPECT_EQ(log_.take(), Lines{"4 DEBUG [ ] Removing file: " + (dir_ / "g") + "\n"});
    EXPECT_FALSE(file.setFileName(dir_ / "g").exists());
    file.setFileName(dir_ / "link");
    ASSERT_EQ(::symlink("nowhere", file.getCompleteName().c_str()), 0);
    EXPECT_FALSE(file.exists()) << "a dangling link";
    EXPECT_FALSE(file.setFileName(dir_ / "").isFile());
    EXPECT_FALSE(file.setFileName(dir_ / "no/f").pathExists());
    EXPECT_NO_THROW(file.remove(true));
}

TEST_F(FileIOTest, NewDirectoriesGetTheirBitsWhateverTheirName) {
    const mode_t mask = ::umask(077);
    FileIO file(dir_ / "by-default/f", true, true);
    file.checkCreateDir("").checkCreateDir(dir_ / "by-default");
    EXPECT_EQ(dir_.mode("by-default"), 0755);
    const std::string names[] = {"a,b+c:@%=d", "two words",  "$(touch x)", "a;touch x",
                                 "`touch x`",  "it's \"q\"", "new\nline",  "*"};
    ASSERT_EQ(::chdir((dir_ / "").c_str()), 0);
    for (const std::string& name : names) {
        file.checkCreateDir(dir_ / name);
        EXPECT_EQ(dir_.mode(name), 0755) << name;
    }
    file.checkCreateDir("-R");
    EXPECT_EQ(dir_.mode("-R"), 0755);
    EXPECT_EQ(dir_.mode("x"), -1) << "part of a name was run";
    dir_.put("file", "");
    EXPECT_NO_THROW(file.checkCreateDir(dir_ / "file"));
    EXPECT_NO_THROW(file.setFileName("plain").checkCreateDir(""));
    ::umask(mask);
}

TEST_F(FileIOTest, ChildrenInheritOpenFiles) {
    const int next = ::dup(STDERR_FILENO);  // the lowest free descriptor, which open takes
    ::close(next);
    FileIO file(dir_ / "f", true, true);
    file.write("");
    EXPECT_EQ(::fcntl(next, F_GETFD), 0) << "close-on-exec was asked for";
    EXPECT_EQ(::fcntl(next, F_GETFL) & (O_APPEND | O_NONBLOCK | O_SYNC), 0);
}

TEST_F(FileIOTest, DescriptorZeroIsNeverTaken) {
    EXPECT_EQ(inChild([&] {
                  ::close(0);
                  FileIO file(dir_ / "f", true, true);
                  file.write("one").write("two");
                  return ::fcntl(0, F_GETFD) == -1 && dir_.get("f") == "onetwo" ? 0 : 1;
              }),
              0);
}

TEST_F(FileIOTest, AnotherUsersFileOpensWithItsOwnBits) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to make another user's file";
    dir_.put("f", "text");
    ::chmod((dir_ / "f").c_str(), 0604);
    ::chmod((dir_ / "").c_str(), 0755);
    EXPECT_EQ(inChild([&] {
                  becomeOrdinaryUser();
                  FileIO file(dir_ / "f", true, false);
                  if (load(file) != "text" || dir_.mode("f") != 0604) return 1;
                  expectFailure("Error creating path: " + (dir_ / "d"), EACCES,
                                [&] { file.checkCreateDir(dir_ / "d"); });
                  return HasFailure() ? 1 : 0;
              }),
              0);
}

TEST_F(FileIOTest, MatchReplacesTheListByWhatItFinds) {
    for (const char* name : {"b.fits", "a.fits", ".c.fits", "d.txt"}) dir_.put(name, "");
    Lines found = {"earlier"};
    FileIO file(dir_ / "*.fits", true, false);
    log_.take();
    file.match(found, 1);
    Lines expected = {"4 DEBUG [ ] Executing match on path: " + (dir_ / "*.fits") + "\n"};
    for (const auto& name : found)
        expected.push_back("4 DEBUG [ ] Found matching file: |" + name + "|\n");
    EXPECT_EQ(log_.take(), expected);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (Lines{dir_ / "a.fits", dir_ / "b.fits"}));
    file.setFileName(dir_ / "none*").match(found, 0);
    EXPECT_EQ(found, Lines{});
}

TEST_F(FileIOTest, FilesBeyondTwoGibibytesWork) {
    FileIO file(dir_ / "big", true, true);
    file.write("x").close();
    if (::truncate((dir_ / "big").c_str(), off_t{3} << 30) != 0) GTEST_SKIP() << "no sparse files";
    EXPECT_TRUE(file.exists() && file.isFile());
    file.write("start").rename(dir_ / "big2");
    EXPECT_TRUE(file.isFile());
    EXPECT_EQ(file.getCompleteName(), dir_ / "big2");
}

}  // namespace

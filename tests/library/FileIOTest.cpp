#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstring>
#include <filesystem>
#include <new>

#include "tests/support/Child.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Memory.h"
#include "tests/support/TempDir.h"
#include "zarnsys/util/FileIO.h"
#include "zarnsys/util/ZarnSysEx.h"

namespace {

using Lines = std::vector<std::string>;

Lines calls;                // of the system that the stand-ins below saw
bool bitsAreFixed = false;  // nobody can set permission bits

}  // namespace

// These take the system's place for the library, too.
extern "C" int open(const char* name, int flags, ...) {
    mode_t mode = 0;
    va_list arguments;
    va_start(arguments, flags);
    if ((flags & O_CREAT) != 0) mode = va_arg(arguments, mode_t);
    va_end(arguments);
    calls.push_back(name + (" " + std::to_string(flags)) + " " + std::to_string(mode));
    return ::openat(AT_FDCWD, name, flags, mode);
}
extern "C" int fchmod(int fd, mode_t mode) noexcept {
    calls.push_back("fchmod " + std::to_string(mode));
    return bitsAreFixed ? -1 : static_cast<int>(::syscall(SYS_fchmod, fd, mode));
}
extern "C" int system(const char* command) {
    calls.emplace_back(command);
    if (bitsAreFixed) return -1;
    return reinterpret_cast<int (*)(const char*)>(::dlsym(RTLD_NEXT, "system"))(command);
}

namespace {

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
            EXPECT_EQ(ZarnSysEx(exception).what(), text);
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

TEST_F(FileIOTest, NamesAreBuiltTakenApartAndGivenExtensions) {
    const struct {
        Lines list;
        std::string name, path, base, extension, added, result;
    } cases[] = {
        {{"/", "data", "f1.fits"}, "/data/f1.fits", "/data", "f1.fits", "fits", "fits", ""},
        {{"data", "/f1"}, "data//f1", "data/", "f1", "", "", ""},
        {{"", "a"}, "a", ".", "a", "", "x", "a.x"},
        {{"a", ""}, "a/", "a", "", "", "x", "a/.x"},
        {{"/f1.tar.gz"}, "/f1.tar.gz", "/", "f1.tar.gz", "gz", "", "/f1.tar.gz."},
        {{"/d/set.2", "me"}, "/d/set.2/me", "/d/set.2", "me", "2/me", "x", "/d/set.2/me.x"},
        {{}, "", ".", "", "", "", ""},
        {{"name."}, "name.", ".", "name.", "", "", ""},
    };
    for (const auto& [list, name, path, base, extension, added, result] : cases) {
        FileIO file(list, true, false);
        EXPECT_EQ(log_.take(), Lines{"4 DEBUG [ ] Built fileName: " + name + "\n"});
        EXPECT_EQ(file.getCompleteName(), name);
        EXPECT_EQ(file.getPath(), path);
        EXPECT_EQ(file.getBaseName(), base);
        EXPECT_EQ(file.getExtension(), extension);
        EXPECT_EQ(file.setExtension(added).getCompleteName(), result.empty() ? name : result);
        std::string line = "4 DEBUG [ ] Adding extension - setting internal filename to: ";
        line.append(name).append(".").append(added).append("\n");
        EXPECT_EQ(log_.takeText(), result.empty() ? "" : line);
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
    const std::string* const caches[] = {&file.getPath(), &file.getBaseName(), &extension};
    file.clear();
    for (const std::string* cache : caches) EXPECT_EQ(*cache, "");
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
    log_.take();
    file.load(text).load(text);
    EXPECT_EQ(log_.take(), Lines(2, "4 DEBUG [ ] Loading file: " + (dir_ / "two") + "\n"));
    EXPECT_EQ(text.str(), "kept " + chunk + chunk);
    EXPECT_EQ(load(file.setFileName(dir_ / "nul")), "ac");
    EXPECT_EQ(load(file.setFileName(dir_ / "sub/new")), "");
    EXPECT_EQ(dir_.mode("sub/new"), 0664);
    EXPECT_EQ(dir_.mode("sub"), 0755);
}

TEST_F(FileIOTest, FailuresNameActionNameAndReason) {
    FileIO file(dir_ / "old/g", true, true);
    file.open(dir_ / "f", true, true).write("text");
    EXPECT_EQ(dir_.mode("old"), -1) << "the directory of a name not opened";
    expectFailure("Error creating path: " + (dir_ / "a/b"), ENOENT,
                  [&] { file.open(dir_ / "a/b/f", true, true); });
    EXPECT_EQ(load(file), "text") << "no file was left open: the old name is opened again";
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
                  errno = EDOM;  // earlier, and not the reason
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
    ASSERT_EQ(::mknod((dir_ / "socket").c_str(), S_IFSOCK | 0600, 0), 0);
    ASSERT_EQ(::mkfifo((dir_ / "fifo").c_str(), 0600), 0);
    EXPECT_TRUE(file.setFileName(dir_ / "socket").isFile());
    EXPECT_FALSE(file.setFileName(dir_ / "fifo").isFile());
    EXPECT_FALSE(file.setFileName(dir_ / "").isFile());
    EXPECT_FALSE(file.setFileName(dir_ / "no/f").pathExists());
    EXPECT_NO_THROW(file.remove(true));
    file.checkCreateDir(dir_ / "empty").setFileName(dir_ / "empty").remove(false);
    EXPECT_EQ(dir_.mode("empty"), -1);
}

TEST_F(FileIOTest, NewDirectoriesGetTheirBitsWhateverTheirName) {
    const mode_t mask = ::umask(077);
    FileIO file(dir_ / "by-default/f", true, true);
    file.checkCreateDir("").checkCreateDir(dir_ / "by-default");
    EXPECT_EQ(dir_.mode("by-default"), 0755);
    const std::string names[] = {"a,b+c:@%=d", "two words",  "$(touch x)", "a;touch x",
                                 "`touch x`",  "it's \"q\"", "new\nline",  "*"};
    ASSERT_EQ(::chdir((dir_ / "").c_str()), 0);
    ASSERT_EQ(::chmod(".", 02755), 0);  // directories in this one inherit its group, and this bit
    for (const std::string& name : names) {
        file.checkCreateDir(dir_ / name);
        EXPECT_EQ(dir_.mode(name), 02755) << name;
    }
    file.checkCreateDir("-R");
    EXPECT_EQ(dir_.mode("-R"), 02755);
    EXPECT_EQ(dir_.mode("x"), -1) << "part of a name was run";
    dir_.put("file", "");
    EXPECT_NO_THROW(file.checkCreateDir(dir_ / "file"));
    ::umask(mask);
}

TEST_F(FileIOTest, AsksTheSystemForNoMoreThanItNeeds) {
    bitsAreFixed = true;
    const mode_t mask = ::umask(0);
    const std::string name = dir_ / "sub/f";
    FileIO file(name, true, true);
    calls.clear();
    file.write("x").close().write("y").open(name, true, false).open(name, false, false);
    const std::string bits = "fchmod 436";  // 0664
    EXPECT_EQ(calls, (Lines{"/bin/chmod 755 " + (dir_ / "sub"), name + " 66 436", bits,
                            name + " 2 0", bits, name + " 0 0", bits, name + " 1 0", bits}))
        << "flags: O_CREAT is 64, O_RDWR 2, O_WRONLY 1";
    EXPECT_EQ(dir_.mode("sub"), 01755) << "until the command sets its bits";
    EXPECT_EQ(dir_.mode("sub/f"), 0664);
    ::umask(mask);
    bitsAreFixed = false;
}

TEST_F(FileIOTest, AFileNeverTakesAStandardStreamsDescriptorForZero) {
    EXPECT_EQ(inChild([&] {
                  for (const int stream : {0, 1, 2}) ::close(stream);
                  FileIO file(dir_ / "f", true, true);
                  file.write("one").write("two");
                  int taken = 0;
                  for (const int stream : {0, 1, 2}) taken += ::fcntl(stream, F_GETFD) != -1;
                  return dir_.get("f") == "onetwo" ? taken : 9;
              }),
              0);
}

TEST_F(FileIOTest, AnotherUsersFileOpensWithItsOwnBits) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to make another user's file";
    dir_.put("f", "text");
    ::chmod((dir_ / "f").c_str(), 0604);
    ::chmod((dir_ / "").c_str(), 0755);
    EXPECT_EQ(inChild([&] {
                  if (::mkdirat(AT_FDCWD, (dir_ / "closed").c_str(), 0) != 0) return 2;
                  if (::chdir((dir_ / "closed").c_str()) != 0) return 2;
                  becomeOrdinaryUser();
                  FileIO file(dir_ / "f", true, false);
                  if (load(file) != "text" || dir_.mode("f") != 0604) return 1;
                  expectFailure("Error creating path: " + (dir_ / "d"), EACCES,
                                [&] { file.checkCreateDir(dir_ / "d"); });
                  file.setFileName("plain").checkCreateDir("");  // in a place he cannot search
                  return HasFailure() ? 1 : 0;
              }),
              0);
}

TEST_F(FileIOTest, MatchReplacesTheListByWhatItFinds) {
    for (const char* name : {"b.fits", "a.fits", ".c.fits", "d.txt", "e.fits"}) dir_.put(name, "");
    std::filesystem::create_directory(dir_ / "z.fits");
    Lines names;
    Lines lines = {"4 DEBUG [ ] Executing match on path: " + (dir_ / "*.fits") + "\n"};
    for (const auto& entry : std::filesystem::directory_iterator(dir_ / "")) {
        const std::string name = entry.path().filename();
        if (name == ".c.fits" || name == "d.txt") continue;
        names.push_back(dir_ / name);
        lines.push_back("4 DEBUG [ ] Found matching file: |" + names.back() + "|\n");
    }
    Lines found = {"earlier"};
    FileIO file(dir_ / "*.fits", true, false);
    log_.take();
    file.match(found, 1);
    EXPECT_EQ(log_.take(), lines);
    EXPECT_EQ(found, names) << "in the directory's order";
    for (const char* none : {"none*", "{a,b}.fits", "d.txt/*"}) {
        found = {"earlier"};
        file.setFileName(dir_ / none).match(found, 0);
        EXPECT_EQ(found, Lines{}) << none;
    }
    file.setFileName(dir_ / "\\a.fit[s]").match(found, 0);
    EXPECT_EQ(found, Lines{dir_ / "a.fits"});
}

TEST_F(FileIOTest, AMatchWithoutMemoryFailsAndKeepsTheList) {
    for (const char* name : {"a", "b", "c"}) dir_.put(name, "");
    FileIO file(dir_ / "*", true, false);
    const std::string message = "Error executing a glob operation with pattern: " + (dir_ / "*");
    int failures = 0;
    for (int allocations = 0; allocations < 30; ++allocations) {
        Lines found = {"earlier"};
        allocationsLeft = allocations;
        try {
            file.match(found, 0);
        } catch (ZarnSysEx& exception) {
            failures += exception.what().find(message) == 0 && found == Lines{"earlier"} ? 1 : 0;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(found.size(), 1U) << "by the first log line";
        }
        allocationsLeft = -1;
    }
    EXPECT_GE(failures, 4) << "three names and their list";
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

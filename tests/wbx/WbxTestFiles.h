#ifndef TESTS_WBX_TEST_FILES_H
#define TESTS_WBX_TEST_FILES_H

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

// The files the wbx tests read and write: the bundled examples, and scratch
// files and folders in the test's temporary folder. Tests of one binary may
// run at once, so each names its scratch files after itself.

inline std::string ExamplePath(const std::string& name) {
    return std::string(ZORWBX_SOURCE_DIR) + "/examples/" + name;
}

// Writes the bytes into the temporary folder's file NAME; its path.
inline std::string ScratchFile(const std::string& name, const std::string& bytes) {
    std::string path = testing::TempDir() + name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

// An empty folder NAME in the temporary folder (emptied when it exists).
inline std::filesystem::path ScratchDirectory(const std::string& name) {
    std::filesystem::path path = std::filesystem::path(testing::TempDir()) / name;
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
    return path;
}

inline std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

#endif

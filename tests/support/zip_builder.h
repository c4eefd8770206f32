// Zip files for tests, made by libzip.
#pragma once

#include <zip.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace skl::test {

inline void writeZip(const std::string& path,
                     const std::vector<std::pair<std::string, std::string>>& entries) {
    int error = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!archive) throw std::runtime_error("no zip at " + path);
    for (const auto& [name, text] : entries) {
        if (!name.empty() && name.back() == '/') {
            zip_dir_add(archive, name.c_str(), 0);
            continue;
        }
        zip_source_t* source = zip_source_buffer(archive, text.data(), text.size(), 0);
        if (zip_file_add(archive, name.c_str(), source, ZIP_FL_OVERWRITE) < 0) zip_source_free(source);
    }
    if (zip_close(archive) < 0) throw std::runtime_error("zip not written");
}

}  // namespace skl::test

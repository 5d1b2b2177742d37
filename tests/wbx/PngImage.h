#ifndef TESTS_WBX_PNG_IMAGE_H
#define TESTS_WBX_PNG_IMAGE_H

#include <zlib.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

// A PNG file decoded into 8-bit RGB pixels: enough of the format for the
// screenshots of a browser (8 bits per channel, RGB or RGBA, not
// interlaced). width is 0 when the file is not such a PNG.
struct PngImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;  // 3 bytes a pixel, rows top down

    explicit PngImage(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        if (bytes.size() < 8 || bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") != 0) return;
        std::string data;
        int channels = 0;
        for (std::size_t at = 8; at + 12 <= bytes.size();) {
            std::size_t length = Big(bytes, at);
            std::string type = bytes.substr(at + 4, 4);
            if (at + 12 + length > bytes.size()) return;
            std::string chunk = bytes.substr(at + 8, length);
            if (type == "IHDR") {
                int depth = static_cast<std::uint8_t>(chunk[8]);
                int colour = static_cast<std::uint8_t>(chunk[9]);
                bool interlaced = chunk[12] != 0;
                if (depth != 8 || (colour != 2 && colour != 6) || interlaced) return;
                channels = colour == 2 ? 3 : 4;
                width = static_cast<int>(Big(chunk, 0));
                height = static_cast<int>(Big(chunk, 4));
            }
            if (type == "IDAT") data += chunk;
            at += 12 + length;
        }
        if (channels == 0 || !Decode(data, channels)) width = height = 0;
    }

    // How many different colours the image holds.
    std::size_t Colours() const {
        std::set<std::uint32_t> colours;
        for (std::size_t i = 0; i + 2 < rgb.size(); i += 3)
            colours.insert(rgb[i] << 16 | rgb[i + 1] << 8 | rgb[i + 2]);
        return colours.size();
    }

    // How many pixels are within tolerance of a colour.
    int Count(int r, int g, int b, int tolerance) const {
        int count = 0;
        for (std::size_t i = 0; i + 2 < rgb.size(); i += 3)
            count += std::abs(rgb[i] - r) <= tolerance && std::abs(rgb[i + 1] - g) <= tolerance &&
                     std::abs(rgb[i + 2] - b) <= tolerance;
        return count;
    }

  private:
    static std::size_t Big(const std::string& bytes, std::size_t at) {
        std::size_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | static_cast<std::uint8_t>(bytes[at + static_cast<std::size_t>(i)]);
        return value;
    }

    static int Paeth(int a, int b, int c) {
        int p = a + b - c, pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
        return pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
    }

    bool Decode(const std::string& data, int channels) {
        std::size_t stride = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
        std::vector<std::uint8_t> raw((stride + 1) * static_cast<std::size_t>(height));
        uLongf size = raw.size();
        if (uncompress(raw.data(), &size, reinterpret_cast<const Bytef*>(data.data()),
                       data.size()) != Z_OK ||
            size != raw.size())
            return false;
        std::vector<std::uint8_t> previous(stride, 0), row(stride);
        for (int y = 0; y < height; ++y) {
            const std::uint8_t* line = &raw[static_cast<std::size_t>(y) * (stride + 1)];
            for (std::size_t x = 0; x < stride; ++x) {
                int a = x >= static_cast<std::size_t>(channels) ? row[x - channels] : 0;
                int b = previous[x];
                int c = x >= static_cast<std::size_t>(channels) ? previous[x - channels] : 0;
                int predictors[] = {0, a, b, (a + b) / 2, Paeth(a, b, c)};
                if (line[0] > 4) return false;
                row[x] = static_cast<std::uint8_t>(line[1 + x] + predictors[line[0]]);
            }
            for (std::size_t x = 0; x < stride; x += static_cast<std::size_t>(channels))
                rgb.insert(rgb.end(), row.begin() + static_cast<long>(x),
                           row.begin() + static_cast<long>(x) + 3);
            previous = row;
        }
        return true;
    }
};

#endif

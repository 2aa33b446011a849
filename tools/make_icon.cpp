// Writes icons/file.ico, the icon the desktop shows for ".img" files once
// Korvel is their opener. It is drawn here rather than committed as a binary:
// a page of stacked sectors with coloured entries, at 16 and 32 pixels.
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

struct Colour {
    std::uint8_t r, g, b, a;
};

void Put16(std::string& out, std::uint16_t v) {
    out.push_back(static_cast<char>(v & 0xFF));
    out.push_back(static_cast<char>(v >> 8));
}

void Put32(std::string& out, std::uint32_t v) {
    for (int shift = 0; shift < 32; shift += 8) {
        out.push_back(static_cast<char>((v >> shift) & 0xFF));
    }
}

// The picture at `size` pixels, top row first.
std::vector<Colour> Draw(int size) {
    const Colour clear{0, 0, 0, 0};
    const Colour frame{0x37, 0x47, 0x4f, 0xFF};
    const Colour paper{0xec, 0xef, 0xf1, 0xFF};
    const Colour rows[] = {{0x1e, 0x88, 0xe5, 0xFF},
                           {0xfb, 0x8c, 0x00, 0xFF},
                           {0x43, 0xa0, 0x47, 0xFF},
                           {0x9e, 0x9e, 0x9e, 0xFF}};
    const int widths[] = {80, 55, 68, 42}; // per cent of the inner width
    std::vector<Colour> pixels(static_cast<std::size_t>(size * size), clear);
    const int margin = size / 8;
    const int border = size >= 32 ? 2 : 1;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            Colour c = clear;
            const bool inside = x >= margin && x < size - margin && y >= 0 && y < size;
            if (inside) {
                const bool edge = x < margin + border || x >= size - margin - border ||
                                  y < border || y >= size - border;
                c = edge ? frame : paper;
                const int inner = size - 2 * margin - 2 * border;
                const int rowHeight = (size - 2 * border) / 5;
                const int row = (y - border) / rowHeight;
                const int within = (y - border) % rowHeight;
                const int left = margin + border + inner / 10;
                if (!edge && row >= 0 && row < 4 && within >= rowHeight / 4 &&
                    within < rowHeight - rowHeight / 4 + (rowHeight < 4 ? 1 : 0) && x >= left &&
                    x < left + inner * widths[row] / 100) {
                    c = rows[row];
                }
            }
            pixels[static_cast<std::size_t>(y * size + x)] = c;
        }
    }
    return pixels;
}

// One icon image as a 32-bit bitmap with its AND mask, bottom row first.
std::string Image(int size) {
    const std::vector<Colour> pixels = Draw(size);
    std::string out;
    Put32(out, 40);
    Put32(out, static_cast<std::uint32_t>(size));
    Put32(out, static_cast<std::uint32_t>(size * 2)); // colour and mask together
    Put16(out, 1);
    Put16(out, 32);
    for (int i = 0; i < 6; ++i) {
        Put32(out, 0);
    }
    for (int y = size - 1; y >= 0; --y) {
        for (int x = 0; x < size; ++x) {
            const Colour c = pixels[static_cast<std::size_t>(y * size + x)];
            out.push_back(static_cast<char>(c.b));
            out.push_back(static_cast<char>(c.g));
            out.push_back(static_cast<char>(c.r));
            out.push_back(static_cast<char>(c.a));
        }
    }
    const int maskRow = ((size + 31) / 32) * 4;
    for (int y = size - 1; y >= 0; --y) {
        std::string row(static_cast<std::size_t>(maskRow), '\0');
        for (int x = 0; x < size; ++x) {
            if (pixels[static_cast<std::size_t>(y * size + x)].a == 0) {
                row[static_cast<std::size_t>(x / 8)] |= static_cast<char>(0x80 >> (x % 8));
            }
        }
        out += row;
    }
    return out;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: korvel-make-icon OUT.ico\n");
        return 2;
    }
    const int sizes[] = {16, 32};
    std::vector<std::string> images;
    for (int size : sizes) {
        images.push_back(Image(size));
    }
    std::string out;
    Put16(out, 0);
    Put16(out, 1); // an icon, not a cursor
    Put16(out, static_cast<std::uint16_t>(images.size()));
    std::uint32_t offset = 6 + 16 * static_cast<std::uint32_t>(images.size());
    for (std::size_t i = 0; i < images.size(); ++i) {
        out.push_back(static_cast<char>(sizes[i]));
        out.push_back(static_cast<char>(sizes[i]));
        out.push_back(0); // no palette
        out.push_back(0);
        Put16(out, 1);
        Put16(out, 32);
        Put32(out, static_cast<std::uint32_t>(images[i].size()));
        Put32(out, offset);
        offset += static_cast<std::uint32_t>(images[i].size());
    }
    for (const std::string& image : images) {
        out += image;
    }
    std::ofstream file(argv[1], std::ios::binary | std::ios::trunc);
    file.write(out.data(), static_cast<std::streamsize>(out.size()));
    return file ? 0 : 1;
}

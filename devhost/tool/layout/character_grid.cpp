#include "devhost/tool/layout/character_grid.h"

#include <algorithm>
#include <array>

namespace devhost::tool {
namespace {

constexpr std::uint8_t kUp = 1;
constexpr std::uint8_t kDown = 2;
constexpr std::uint8_t kLeft = 4;
constexpr std::uint8_t kRight = 8;

/// By the directions of a cell's lines.
constexpr std::array<const char*, 16> kBoxDrawing = {" ", "╵", "╷", "│", "╴", "┘", "┐", "┤",
                                                     "╶", "└", "┌", "├", "─", "┴", "┬", "┼"};
constexpr std::array<char, 16> kAscii = {' ', '|', '|', '|', '-', '+', '+', '+',
                                         '-', '+', '+', '+', '-', '+', '+', '+'};

/// Removes the directions `cut` and adds `added`.
void join(std::uint8_t& cell, unsigned cut, unsigned added) { cell = static_cast<std::uint8_t>((cell & ~cut) | added); }

}  // namespace

void CharacterGrid::addBox(const CellArea& area) {
  for (std::size_t row = area.top + 1; row < area.bottom; ++row) {
    std::fill(&at(area.left + 1, row), &at(area.right, row), 0);
    join(at(area.left, row), kRight, kUp | kDown);
    join(at(area.right, row), kLeft, kUp | kDown);
  }
  for (std::size_t column = area.left + 1; column < area.right; ++column) {
    join(at(column, area.top), kDown, kLeft | kRight);
    join(at(column, area.bottom), kUp, kLeft | kRight);
  }
  join(at(area.left, area.top), 0, kDown | kRight);
  join(at(area.right, area.top), 0, kDown | kLeft);
  join(at(area.left, area.bottom), 0, kUp | kRight);
  join(at(area.right, area.bottom), 0, kUp | kLeft);
}

void CharacterGrid::addText(std::size_t column, std::size_t row, std::string text, std::size_t width) {
  texts_[{row, column}] = {std::move(text), width};
}

std::string CharacterGrid::draw(bool ascii) const {
  std::string result;
  for (std::size_t row = 0; row < rows_; ++row) {
    std::string line;
    for (std::size_t column = 0; column < columns_;) {
      const auto text = texts_.find({row, column});
      if (text != texts_.end() && text->second.width > 0) {
        line += text->second.bytes;
        column += text->second.width;
        continue;
      }
      const std::uint8_t lines = lines_[row * columns_ + column];
      line += ascii ? std::string(1, kAscii[lines]) : std::string(kBoxDrawing[lines]);
      ++column;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    result += line + '\n';
  }
  return result;
}

}  // namespace devhost::tool

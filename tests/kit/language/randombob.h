// Random programs, to hold tools for Bob against the compiler.
#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class RandomBob {
 public:
  explicit RandomBob(unsigned seed)
      : random([numbers = std::mt19937(seed)]() mutable { return uint32_t(numbers()); }) {}
  // By numbers from elsewhere, which must not be multiples of 3 for ever.
  explicit RandomBob(std::function<uint32_t()> numbers) : random(std::move(numbers)) {}

  // A program that the compiler accepts, laid out at random, with comments anywhere.
  std::string program();
  // The source with one to three of its tokens left out, doubled, exchanged or replaced.
  std::string mutated(std::string_view source);
  // Any bytes, most of them such as programs have.
  std::string bytes();

 private:
  int below(int n) { return int(random() % unsigned(n)); }
  bool oneIn(int n) { return below(n) == 0; }
  std::string_view anyOf(std::initializer_list<std::string_view> list) { return list.begin()[below(int(list.size()))]; }

  void put(std::string_view token);
  void statement(int depth);
  void block(int depth);
  void loop(int depth);
  void selection(int depth);
  void parameters(int depth);
  void comma(int depth);
  void element(int depth);
  void binary(int depth);
  void place(int depth);
  void primary(int depth);
  void function(int depth);
  void arguments(int depth);
  void object(int depth);
  std::string name();

  std::function<uint32_t()> random;
  std::string text;
  int loops = 0, switches = 0, functions = 0;
  int labels = 0;
  size_t statementBegin = 0;
};

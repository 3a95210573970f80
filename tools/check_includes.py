#!/usr/bin/env python3
"""Checks that each C++ file includes the standard headers of the standard names that it uses, so that none leans on
the precompiled header or on what another header happens to bring along. A source file may rely on what the project's
headers name that it includes itself; a header relies on no other. A name that the table lacks is left to the
compiler, which reads without the precompiled header in scripts/check-clang. `--fix` adds the missing lines."""

import argparse
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("src", "tests", "benchmarks", "fuzz")

# The names by header. A name that several headers hold stands in ANY_OF instead.
NAMES = {
    "algorithm": "all_of any_of clamp find find_if is_sorted lower_bound max min minmax mismatch none_of set_intersection "
                 "sort stable_sort upper_bound copy count count_if equal fill reverse rotate unique max_element "
                 "min_element nth_element partial_sort partition transform for_each remove_if generate generate_n search "
                 "shuffle includes set_difference next_permutation equal_range binary_search copy_if replace fill_n",
    "array": "array to_array",
    "atomic": "atomic atomic_flag memory_order_acq_rel memory_order_relaxed memory_order_acquire memory_order_release "
              "atomic_bool atomic_int",
    "barrier": "barrier",
    "bit": "bit_ceil bit_cast bit_width popcount countr_zero countl_zero has_single_bit",
    "bitset": "bitset",
    "cctype": "isdigit isspace tolower toupper isalpha isalnum",
    "charconv": "from_chars to_chars chars_format",
    "chrono": "chrono chrono_literals",
    "cmath": "floor ceil llround log10 log2 lround pow round sqrt isnan isfinite isinf fabs",
    "compare": "strong_ordering weak_ordering partial_ordering",
    "concepts": "same_as convertible_to derived_from invocable integral floating_point predicate",
    "condition_variable": "condition_variable condition_variable_any cv_status",
    "csignal": "signal sig_atomic_t raise",
    "cstdint": "int8_t int16_t int32_t int64_t uint8_t uint16_t uint32_t uint64_t intptr_t uintptr_t",
    "cstdlib": "free malloc getenv exit abort strtol atoi system strtod strtoll strtoull",
    "cstdio": "printf fprintf fputs fputc puts fflush fopen fclose fwrite fread remove rename snprintf FILE perror",
    "cstring": "memchr memcpy memcmp memmove memset strlen strerror strcmp strchr strrchr",
    "ctime": "tm time mktime strftime localtime gmtime clock clock_t",
    "deque": "deque",
    "exception": "exception exception_ptr current_exception rethrow_exception make_exception_ptr terminate",
    "expected": "expected unexpected",
    "filesystem": "filesystem",
    "fstream": "ifstream ofstream fstream",
    "functional": "function bind_front equal_to greater hash invoke less plus ref cref reference_wrapper not_fn identity",
    "future": "future packaged_task promise async future_status shared_future launch",
    "iomanip": "setw setfill setprecision",
    "iostream": "cout cerr cin clog",
    "iterator": "back_inserter inserter make_reverse_iterator next prev advance distance istreambuf_iterator "
                "istream_iterator ostream_iterator make_move_iterator back_insert_iterator input_iterator_tag "
                "forward_iterator_tag bidirectional_iterator_tag random_access_iterator_tag",
    "latch": "latch",
    "limits": "numeric_limits",
    "list": "list",
    "map": "map multimap",
    "memory": "make_shared make_unique make_unique_for_overwrite shared_ptr unique_ptr weak_ptr "
              "enable_shared_from_this addressof static_pointer_cast const_pointer_cast default_delete",
    "mutex": "mutex scoped_lock lock_guard unique_lock try_to_lock once_flag call_once recursive_mutex adopt_lock "
             "defer_lock",
    "new": "bad_alloc nothrow",
    "numbers": "numbers",
    "numeric": "iota accumulate reduce gcd partial_sum",
    "optional": "optional nullopt nullopt_t make_optional",
    "queue": "queue priority_queue",
    "random": "mt19937 mt19937_64 random_device seed_seq uniform_int_distribution "
              "uniform_real_distribution minstd_rand",
    "ranges": "views",
    "ratio": "ratio",
    "regex": "regex smatch regex_search regex_match",
    "semaphore": "counting_semaphore binary_semaphore",
    "set": "set multiset",
    "shared_mutex": "shared_mutex shared_lock",
    "source_location": "source_location",
    "span": "span as_bytes as_writable_bytes",
    "sstream": "stringstream ostringstream istringstream",
    "stdexcept": "invalid_argument length_error logic_error out_of_range runtime_error domain_error",
    "stop_token": "stop_token stop_source stop_callback nostopstate",
    "string": "string to_string u16string u32string stoi stol stoul stoll getline char_traits u8string",
    "string_view": "string_view u16string_view u8string_view u32string_view",
    "system_error": "error_code errc generic_category system_category system_error make_error_code error_category "
                    "error_condition",
    "thread": "thread jthread this_thread",
    "tuple": "tuple tie apply forward_as_tuple tuple_size_v make_tuple tuple_element_t tuple_cat make_from_tuple",
    "type_traits": "false_type true_type integral_constant invoke_result_t is_convertible_v is_floating_point_v "
                   "is_integral_v is_same_v remove_const_t remove_cvref_t remove_reference_t conditional_t decay_t "
                   "enable_if_t is_invocable_v is_base_of_v underlying_type_t is_enum_v is_trivially_copyable_v "
                   "is_void_v is_empty_v is_aggregate_v is_object_v is_member_function_pointer_v is_constructible_v is_nothrow_move_constructible_v "
                   "is_default_constructible_v is_signed_v make_unsigned_t make_signed_t is_class_v is_pointer_v",
    "unordered_map": "unordered_map unordered_multimap",
    "unordered_set": "unordered_set unordered_multiset",
    "utility": "declval exchange index_sequence make_index_sequence pair in_range unreachable to_underlying as_const "
               "cmp_less cmp_greater cmp_equal make_pair piecewise_construct in_place integer_sequence",
    "variant": "variant visit monostate holds_alternative get_if",
    "vector": "vector",
}
CONTAINERS = ("array", "deque", "list", "map", "queue", "set", "span", "string", "string_view", "unordered_map",
              "unordered_set", "vector")
# Where several headers hold a name, any of them will do. The first one is what --fix adds.
ANY_OF = {
    "move": ("utility", "algorithm", "expected", "functional", "memory", "optional", "tuple", "variant", *CONTAINERS),
    "forward": ("utility", "functional", "memory", "optional", "tuple", "variant", *CONTAINERS),
    "swap": ("utility", "algorithm", *CONTAINERS),
    "get": ("utility", "tuple", "variant", "array", "map"),
    "size_t": ("cstddef", "cstring", "cstdlib", "cstdio", "memory", "utility", *CONTAINERS),
    "ptrdiff_t": ("cstddef", *CONTAINERS),
    "byte": ("cstddef",), "max_align_t": ("cstddef",), "nullptr_t": ("cstddef",),
    "initializer_list": ("initializer_list", *CONTAINERS),
    "erase": ("vector", *CONTAINERS), "erase_if": ("vector", *CONTAINERS),
    "begin": ("iterator", *CONTAINERS), "end": ("iterator", *CONTAINERS), "data": ("iterator", *CONTAINERS),
    "size": ("iterator", *CONTAINERS), "ssize": ("iterator", *CONTAINERS), "empty": ("iterator", *CONTAINERS),
    "abs": ("cstdlib", "cmath"),
    "ignore": ("tuple", "utility"),
    "time_t": ("ctime", "chrono"),
    "ios": ("ios", "fstream", "iostream", "sstream"), "streamsize": ("ios", "fstream", "iostream", "sstream"),
    "ostream": ("ostream", "fstream", "iostream", "sstream"), "istream": ("istream", "fstream", "iostream", "sstream"),
    "ios_base": ("ios", "fstream", "iostream", "sstream"),
    "endl": ("ostream", "iostream"), "flush": ("ostream", "iostream"),
    "string_literals": ("string",), "string_view_literals": ("string_view",),
    "nothrow_t": ("new",),
    "milli": ("ratio", "chrono"), "micro": ("ratio", "chrono"), "nano": ("ratio", "chrono"),
}
RANGES_OF_RANGES = "begin end size data empty range view input_range forward_range subrange ssize range_value_t " \
                   "random_access_range sized_range contiguous_range iota_view borrowed_range to"
STANDARD = re.compile(r"\bstd::((?:ranges::)?\w+)")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]+[<"]([^>"]+)[>"].*$', re.MULTILINE)
NOT_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|^[ \t]*#[ \t]*include[^\n]*',
                      re.DOTALL | re.MULTILINE)


def headers_by_name():
    table = {name: (header,) for header, names in NAMES.items() for name in names.split()}
    table |= {name: ("functional",) for name in ("ranges::less", "ranges::greater", "ranges::equal_to")}
    table |= {f"ranges::{name}": ("ranges", "algorithm", *CONTAINERS) for name in RANGES_OF_RANGES.split()}
    table |= {"ranges::swap": ("utility", "concepts")}
    return table | ANY_OF


HEADERS = headers_by_name()


def includes_of(path):
    return set(INCLUDE.findall(path.read_text(encoding="utf-8"))) if path.exists() else set()


def missing_headers(path):
    """The headers to add."""
    names = set(STANDARD.findall(NOT_CODE.sub(" ", path.read_text(encoding="utf-8"))))
    there = includes_of(path)
    if path.suffix != ".h":
        for header in [include for include in there if include.endswith(".h")]:
            there |= next((includes_of(at / header) for at in (ROOT / "src", ROOT / "tests", path.parent)
                           if (at / header).exists()), set())
    missing = set()
    for name in sorted(names):
        headers = HEADERS.get(name, ())
        if len(headers) == 1 and headers[0] not in there:
            missing.add(headers[0])
    # Those that several headers hold come last: what is added for the others may do.
    for name in sorted(names):
        headers = HEADERS.get(name) or (("algorithm", "numeric") if name.startswith("ranges::") else ())
        if len(headers) > 1 and not there.intersection(headers) and not missing.intersection(headers):
            missing.add(headers[0])
    return missing


def is_standard(line):
    return re.fullmatch(r"#include <[a-z_0-9]+>.*", line) is not None


def with_headers(text, headers):
    """The text with the headers added to its block of standard headers, or with a new block of them: behind the
    file's own header, which comes first, or behind the opening comment and #pragma once."""
    lines = text.split("\n")
    added = [f"#include <{header}>" for header in sorted(headers)]
    standard = [number for number, line in enumerate(lines) if is_standard(line)]
    if standard:
        first = last = standard[0]
        while is_standard(lines[last + 1]):
            last += 1
        block = sorted(set(lines[first:last + 1]) | set(added))
        return "\n".join(lines[:first] + block + lines[last + 1:])
    at = next((number for number, line in enumerate(lines) if line.startswith("#pragma once")), None)
    if at is None:
        at = next(number for number, line in enumerate(lines) if line.startswith("#include"))
        if not lines[at + 1] == "":  # no header of its own name
            return "\n".join(lines[:at] + added + [""] + lines[at:])
    rest = lines[at + 1:]
    return "\n".join(lines[:at + 1] + [""] + added + ([] if rest and rest[0] == "" else [""]) + rest)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--fix", action="store_true")
    fix = parser.parse_args().fix
    files = [path for folder in FOLDERS for path in sorted((ROOT / folder).rglob("*")) if path.suffix in {".h", ".cpp"}]
    faults = []
    for path in sorted(files, key=lambda path: path.suffix, reverse=True):  # headers first: sources rely on them
        missing = missing_headers(path)
        if fix and missing:
            path.write_text(with_headers(path.read_text(encoding="utf-8"), missing), encoding="utf-8")
            missing = set()
        shown = path.relative_to(ROOT)
        faults += [f"{shown}: uses names of <{header}> and doesn't include it" for header in sorted(missing)]
    print("\n".join(faults), end="\n" if faults else "", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())

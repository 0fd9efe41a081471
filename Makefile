# Thin wrapper over CMake: make run, make test, make bench, make sanitize.
BUILD ?= build
SANITIZE_BUILD ?= build-sanitize
JOBS ?= $(shell nproc)
# make bench BENCH_ARGS=--quick for a CI-sized run; see bench/run_bench.py --help.
BENCH_ARGS ?=

.PHONY: all deps configure build run test bench sanitize format clean

all: build

deps:
	bash scripts/install-deps.sh

$(BUILD)/CMakeCache.txt:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo

configure: $(BUILD)/CMakeCache.txt

build: configure
	cmake --build $(BUILD) -j $(JOBS)

run: deps build
	$(BUILD)/bin/quillmeal

test: deps build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

bench: deps build
	python3 bench/run_bench.py --build $(BUILD) $(BENCH_ARGS)

# Every test under AddressSanitizer, LeakSanitizer and UBSan, in a build folder of its own.
sanitize: deps
	cmake -S . -B $(SANITIZE_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUILLMEAL_SANITIZE=ON
	cmake --build $(SANITIZE_BUILD) -j $(JOBS)
	cd $(SANITIZE_BUILD) && QT_QPA_PLATFORM=offscreen \
	  ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1 \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/scripts/lsan.supp \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --output-on-failure -j $(JOBS)

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf $(BUILD) $(SANITIZE_BUILD)

# Thin wrapper over CMake: make run, make test, make bench.
BUILD ?= build
JOBS ?= $(shell nproc)

.PHONY: all deps configure build run test bench format clean

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
	$(BUILD)/bench/quillmeal-bench

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf $(BUILD)

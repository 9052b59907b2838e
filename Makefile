# Everyday entry points; each wraps a CMake preset (see CMakePresets.json).
#   make test   configure, build and run every test (sanitizers on), then fuzz each target briefly
#               (FUZZ_SMOKE_RUNS executions with a fixed random start: the same inputs on every machine)
#   make demo   build the release tool and run the main job on the bundled example
#   make bench  build and run the benchmarks
#   make fuzz   run every fuzz target longer (FUZZ_SECONDS each)

FUZZ_SECONDS ?= 300
FUZZ_SMOKE_RUNS ?= 20000
FUZZ_SMOKE_SECONDS ?= 180
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

.PHONY: all test unit-test fuzz-build fuzz-smoke fuzz demo bench release format clean

all: test

test: unit-test fuzz-smoke

unit-test:
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS)
	ctest --preset dev

fuzz-build:
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)

fuzz-smoke: fuzz-build
	fuzz/run.sh build/fuzz $(FUZZ_SMOKE_SECONDS) $(FUZZ_SMOKE_RUNS)

fuzz: fuzz-build
	fuzz/run.sh build/fuzz $(FUZZ_SECONDS)

release:
	cmake --preset release
	cmake --build --preset release -j $(JOBS)

demo: release
	./build/release/tools/orvo demo examples

bench: release
	@if [ -x build/release/bench/orvo_bench ]; then ./build/release/bench/orvo_bench; \
	 else echo "no benchmarks built"; fi

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf build

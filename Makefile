# Two entry points for a fresh Debian 12 machine: `make run` and `make test`.
BUILD_DIR ?= build
BUILD_TYPE ?= RelWithDebInfo
JOBS ?= $(shell nproc)

.PHONY: run test deps configure build clean

run: build
	./$(BUILD_DIR)/app/zamshadereditor

test: build
	cd $(BUILD_DIR) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

deps:
	@./scripts/bootstrap.sh

configure: deps
	@test -f $(BUILD_DIR)/build.ninja || cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=$(BUILD_TYPE)

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

clean:
	rm -rf $(BUILD_DIR)

.PHONY: bench-zfxparser
bench-zfxparser: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target bench_zfxparser
	./$(BUILD_DIR)/bench/bench_zfxparser

.PHONY: bench-editing
bench-editing: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target bench_editing
	cd $(BUILD_DIR) && QT_QPA_PLATFORM=offscreen ./bench/bench_editing

.PHONY: bench-compiler
bench-compiler: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target glslcompiler_zc1
	python3 bench/compiler/bench_compiler.py $(BUILD_DIR)/bin

.PHONY: bench-pipeline
bench-pipeline: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target bench_pipeline bench_zfxparser glslcompiler_zc1
	./$(BUILD_DIR)/bench/bench_pipeline $(BUILD_DIR)/bin ./$(BUILD_DIR)/bench/bench_zfxparser

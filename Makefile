# Thin wrapper: system packages, configure, build, run, test.
BUILD ?= build
JOBS ?= 2
GENERATOR := $(shell command -v ninja >/dev/null 2>&1 && echo Ninja || echo "Unix Makefiles")

.PHONY: all deps configure build run test demo clean

all: build

deps:
	bash scripts/install-deps.sh

configure: deps
	@if [ ! -f $(BUILD)/CMakeCache.txt ]; then \
	  cmake -S . -B $(BUILD) -G "$(GENERATOR)" -DCMAKE_BUILD_TYPE=RelWithDebInfo; \
	fi

build: configure
	cmake --build $(BUILD) -j$(JOBS)

# Starts the agenda on the embedded default store, in the local program
# folder ./run (created on first start).
run: build
	mkdir -p run
	TAVONEL_PROGRAM_DIR="$(CURDIR)/run" $(BUILD)/src/app/tavonel

test: build
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

clean:
	rm -rf $(BUILD)

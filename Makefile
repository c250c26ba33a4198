# Thin wrapper: system packages, configure, build, run, test.
BUILD ?= build
JOBS ?= 2
GENERATOR := $(shell command -v ninja >/dev/null 2>&1 && echo Ninja || echo "Unix Makefiles")

.PHONY: all deps configure build run test demo package clean

all: build

# The system packages by parts (scripts/install-deps.sh): running needs only
# its own part; the tests add theirs.
DEPS_PARTS ?= run
test: DEPS_PARTS = run test
package: DEPS_PARTS = run package

deps:
	bash scripts/install-deps.sh $(DEPS_PARTS)

configure: deps
	@if [ ! -f $(BUILD)/CMakeCache.txt ]; then \
	  cmake -S . -B $(BUILD) -G "$(GENERATOR)" -DCMAKE_BUILD_TYPE=RelWithDebInfo; \
	fi

build: configure
	cmake --build $(BUILD) -j$(JOBS)

# Starts the agenda on the embedded default store, in the local program
# folder ./run. The first time (no ./run yet) the folder is filled with the
# demonstration agenda of the current week; afterwards it is kept as it is.
run: build
	@if [ ! -e run ]; then $(BUILD)/src/app/tavonel-admin demo run; fi
	TAVONEL_PROGRAM_DIR="$(CURDIR)/run" $(BUILD)/src/app/tavonel

# A demonstration agenda made anew in ./demo for the current week (two
# practitioners, their rules, 50 patients, about 60 appointments), started as
# agenda 1 of that folder, whose activity journal goes to ./demo/Journal.
demo: build
	rm -rf demo
	$(BUILD)/src/app/tavonel-admin demo demo
	TAVONEL_PROGRAM_DIR="$(CURDIR)/demo" $(BUILD)/src/app/tavonel "$$($(BUILD)/src/app/tavonel-admin launch-arg 1)"

test: build
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

# The Debian package of a workstation: $(BUILD)/tavonel_<version>_<arch>.deb.
package: build
	cd $(BUILD) && cpack -G DEB

clean:
	rm -rf $(BUILD)

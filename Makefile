# The commands of this project. `make help` lists them.

SHELL := /bin/bash
.DEFAULT_GOAL := help
JOBS ?= $(shell nproc)
PORT ?= 5988
PREFIX ?= /usr/local

.PHONY: help build demo serve test sanitize check ci matrix mutants fuzz coverage bench install packages packages-test format clean

help: ## list the commands
	@grep -hE '^[a-z-]+:.*## ' Makefile | sed -E 's/:[^#]*## /\t/' | expand -t 15

build: ## build the server, the library and the tool into build/bin and build/lib
	@scripts/require-packages build
	@scripts/build release

demo: ## install what is missing, build, and walk through the main job with a real CIM client
	@scripts/require-packages build run
	@scripts/build release
	@scripts/demo

serve: ## the same server, staying up on 127.0.0.1:5988 (PORT= changes it)
	@scripts/require-packages build run
	@scripts/build release
	@scripts/serve $(PORT)

test: ## install what is missing, build with g++ for debugging, run every test once
	@scripts/require-packages build run test
	@scripts/build debug
	@scripts/run-tests debug

sanitize: ## all tests with address and undefined sanitizers, the overlap tests with the thread sanitizer
	@scripts/require-packages build run test sanitize
	@scripts/build asan
	@scripts/build tsan overlap_tests
	@scripts/run-tests asan tsan:overlap

check: ## formatting and static checks
	@scripts/require-packages build run test check
	@scripts/check

ci: ## everything before landing: test, sanitize, check, the demo as an ordinary user, and as root packages-test
	@scripts/ci

matrix: ## every operation and method in every situation: carry them out, then print them
	@scripts/require-packages build run test
	@scripts/build debug matrix_test matrix_print
	@scripts/run-tests debug:matrix
	@build/debug/bin/matrix_print

mutants: ## break the library's rules one at a time and see that the tests notice (about an hour)
	@scripts/require-packages build run test
	@scripts/mutants

fuzz: ## feed the readers with what nobody thought of (SECONDS= for each of them, 300)
	@scripts/require-packages build run test sanitize
	@scripts/build fuzz fuzz_targets
	@scripts/fuzz $(SECONDS)

coverage: ## all tests once more, and which lines and branches of the sources they ran
	@scripts/require-packages build run test coverage
	@scripts/build coverage
	@scripts/coverage

bench: ## measure against the floor: a table here, build/bench.json beside it
	@scripts/require-packages build run bench
	@scripts/build bench
	@scripts/bench

install: ## build, and install below PREFIX (/usr/local), or with DESTDIR= below that folder
	@scripts/require-packages build
	@scripts/build release
	@DESTDIR="$(DESTDIR)" scripts/install "$(PREFIX)"

packages: ## build the Debian packages into build/packages, and have lintian look at them
	@scripts/require-packages build packages
	@scripts/packages

packages-test: ## as root: install the packages in a clean Debian tree, run the job there, remove them again
	@scripts/require-packages build packages
	@scripts/packages-test

format: ## rewrite all sources in the project's format
	@scripts/require-packages check
	@git ls-files -co --exclude-standard '*.cpp' '*.hpp' '*.h' | xargs clang-format -i

clean: ## remove everything that was built
	rm -rf build

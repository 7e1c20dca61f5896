// clang's thread-safety attributes, checked by its preset; other compilers see nothing.

#ifndef NEBCORE_NEBTHREADANNOTATIONS_H
#define NEBCORE_NEBTHREADANNOTATIONS_H

#ifdef __clang__
#define NEB_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define NEB_THREAD_ATTRIBUTE(x)
#endif

#define NEB_CAPABILITY(name) NEB_THREAD_ATTRIBUTE(capability(name))
#define NEB_SCOPED_CAPABILITY NEB_THREAD_ATTRIBUTE(scoped_lockable)
#define NEB_GUARDED_BY(lock) NEB_THREAD_ATTRIBUTE(guarded_by(lock))
#define NEB_REQUIRES(...) NEB_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define NEB_ACQUIRE(...) NEB_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define NEB_RELEASE(...) NEB_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))

#endif

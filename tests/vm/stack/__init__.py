"""What scripts in the guest share: the real Bluetooth stack on a virtual controller, and ways to
watch it. Nothing here waits for a length of time where it can wait for a condition."""

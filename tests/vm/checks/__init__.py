"""What selftest shows, group by group."""

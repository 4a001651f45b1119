// quillaroth: the admin's command for the queues of commandtoquillaroth.

int main() { return 0; }
